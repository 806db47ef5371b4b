"""Computes the figures of docs/palettes.md from the colours that the program makes.

    palettes.py PRINT_PALETTES PALETTES_MD [--write]

Fails when the document holds other figures, or when a scheme that is called even is not. With --write the
document gets the figures.

Lightness L* and colour differences are those of CIE 1976 (L*a*b*, white D65), colours sRGB (IEC 61966-2-1).
Missing red or green is simulated with the matrices of Machado, Oliveira and Fernandes (IEEE TVCG 15-6, 2009),
severity 1, applied to linear light.
"""
import math
import subprocess
import sys

PARTS = 16  # of the scale: what lies so far apart is compared
EVEN = ("Blue to yellow", "Violet to yellow", "Grey on black", "Black on white")
FOR_ALL_EYES = ("Blue to yellow", "Violet to yellow")
MOST_UNEVEN = 0.10  # of the mean step
LEAST_DIFFERENCE = 4.0  # about 2.3 is just noticed
BEGIN, END = "<!-- figures -->\n", "<!-- end of figures -->\n"

TO_XYZ = ((0.4124564, 0.3575761, 0.1804375), (0.2126729, 0.7151522, 0.0721750), (0.0193339, 0.1191920, 0.9503041))
WHITE = (0.95047, 1.0, 1.08883)
EYES = {
    "all colours": ((1, 0, 0), (0, 1, 0), (0, 0, 1)),
    "no green (deuteranopia)": ((0.367322, 0.860646, -0.227968), (0.280085, 0.672501, 0.047413),
                                (-0.011820, 0.042940, 0.968881)),
    "no red (protanopia)": ((0.152286, 1.052583, -0.204868), (0.114503, 0.786281, 0.099216),
                            (-0.003882, -0.048116, 1.051998)),
}


def times(matrix, vector):
    return [sum(a * b for a, b in zip(row, vector)) for row in matrix]


def light(byte):
    share = byte / 255
    return share / 12.92 if share <= 0.04045 else ((share + 0.055) / 1.055) ** 2.4


def lab(colour, eye="all colours"):
    seen = [min(max(c, 0.0), 1.0) for c in times(EYES[eye], [light(byte) for byte in colour])]
    x, y, z = (t ** (1 / 3) if t > 216 / 24389 else (24389 / 27 * t + 16) / 116
               for t in (c / white for c, white in zip(times(TO_XYZ, seen), WHITE)))
    return 116 * y - 16, 500 * (x - y), 200 * (y - z)


def read_schemes(program):
    schemes = {}
    for line in subprocess.run([program], check=True, capture_output=True, text=True).stdout.splitlines():
        if " " in line or not all(c in "0123456789ABCDEF" for c in line):
            samples = schemes[line] = []
        else:
            samples.append(bytes.fromhex(line))
    return schemes


def measure(colours):
    samples = [colours[i * (len(colours) - 1) // PARTS] for i in range(PARTS + 1)]
    pairs = list(zip(samples, samples[1:]))
    steps = [lab(b)[0] - lab(a)[0] for a, b in pairs]
    least = {eye: min(math.dist(lab(a, eye), lab(b, eye)) for a, b in pairs) for eye in EYES}
    return steps, least


def faults(name, steps, least):
    mean = sum(steps) / len(steps)
    if name in EVEN and max(abs(step - mean) for step in steps) > MOST_UNEVEN * abs(mean):
        yield f"{name}: steps of lightness from {min(steps):.2f} to {max(steps):.2f} are not even"
    for eye, difference in least.items():
        if name in FOR_ALL_EYES and difference < LEAST_DIFFERENCE:
            yield f"{name}: differences of {difference:.2f} are hard to see with {eye}"


def table(measured):
    heads = ["Scheme", "L* weakest", "L* strongest", "Step least", "Step greatest", "Step mean"]
    heads += [f"Least ΔE, {eye}" for eye in EYES]
    rows = [heads, ["---"] + ["---:"] * (len(heads) - 1)]
    for name, (colours, steps, least) in measured.items():
        figures = [lab(colours[0])[0], lab(colours[-1])[0], min(steps), max(steps), sum(steps) / len(steps)]
        rows.append([name] + [f"{figure:.1f}" for figure in figures[:2]] + [f"{figure:.2f}" for figure in figures[2:]] +
                    [f"{difference:.1f}" for difference in least.values()])
    return "".join("| " + " | ".join(row) + " |\n" for row in rows)


def main(program, path, write):
    measured = {name: (colours, *measure(colours)) for name, colours in read_schemes(program).items()}
    wrong = [fault for name, (_, steps, least) in measured.items() for fault in faults(name, steps, least)]
    with open(path, encoding="utf-8") as file:
        text = file.read()
    before, rest = text.split(BEGIN)
    stands, behind = rest.split(END)
    computed = table(measured)
    if write:
        with open(path, "w", encoding="utf-8") as file:
            file.write(before + BEGIN + computed + END + behind)
    elif stands != computed:
        wrong.append(f"{path} holds other figures than\n{computed}")
    if set(EVEN) - set(measured):
        wrong.append(f"schemes are missing: {set(EVEN) - set(measured)}")
    print("\n".join(wrong) if wrong else computed, end="")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2], "--write" in sys.argv))
