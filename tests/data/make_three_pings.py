#!/usr/bin/env python3
"""Makes three_pings.log, three_pings.sgy and three_pings_txt.log: a binary recording of three pings and what its
conversions must give, each written from the field tables of its format, without any code of the program."""
import os
import struct
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
SOUND_SPEED = 1500

# time of work, ping, sampling Hz, range m, tx Hz, altitude, temperature, pitch, roll,
# latitude rad, longitude rad, gps altitude, gps time, pdop, valid, samples
PINGS = [
    # 2024-02-29 23:59:58 UTC, north-east
    (1709251198, 7, 100000, 30.0, 450000, 4.25, 11.5, 1.25, -0.5,
     0.75, 0.125, 12.5, 1709251197, 1.5, 1, [0, 1, 2, 3, 4095, 65535]),
    # 2024-12-31 00:00:00 UTC, south-west, another length
    (1735603200, 8, 100000, 30.0, 200000, 0.0, -1.75, 450.0, 0.0,
     -0.5, -1.25, -3.25, 1735603199, 2.25, 1, [10, 200, 3000]),
    # 2023-03-01 01:02:03 UTC, off the grid, no position
    (1677632523, 9, 30000, 15.5, 450000, 199.875, 0.0, 0.0, 0.0,
     0.0, 0.0, 0.0, 0, 0.0, 0, [5, 6, 7, 8]),
]


def frame(p):
    head = struct.pack('<4sIIIIIIIIfiIfffffffIfi', b'TR57', 88, 0, 0, p[0], p[1], p[2], 0, len(p[15]), p[3], p[4], 0,
                       p[5], p[6], p[7], p[8], p[9], p[10], p[11], p[12], p[13], p[14])
    assert len(head) == 88
    return head + struct.pack('<%dH' % len(p[15]), *p[15])


CARDS = {
    1: 'C 1 CLIENT Client                 Tidewriter             CREW NO',
    2: 'C 2 LINE 316_171200 AREA                        MAP ID',
    3: 'C 3 REEL NO           DAY-START OF REEL 316 YEAR 2009 OBSERVER',
    4: 'C 4 INSTRUMENT: MFG TideWriter MODEL            SERIAL NO',
    5: 'C 5 DATA TRACES/RECORD 1      AUXILIARY TRACES/RECORD 0       CDP FOLD 1',
    6: 'C 6 SAMPLE INTERVAL 40      SAMPLES/TRACE 692   BITS/IN     BYTES/SAMPPLE 2',
    7: 'C 7 RECORDING FORMAT 3      FORMAT THIS REEL 3      MEASUREMENT SYSTEM 1',
    8: 'C 8 SAMPLE CODE: FIXED PT',
    9: 'C 9 GAIN  TYPE: OTHER',
    10: 'C10 FILTERS: ALIAS     HZ  NOTCH     HZ  BAND     -     HZ  SLOPE    -    DB/OCT',
    11: 'C11 SOURCE: TYPE            NUMBER/POINT        POINT INTERVAL',
    12: 'C12     PATTERN:                           LENGTH        WIDTH',
    13: 'C13 SWEEP: START 20  HZ END 150  HZ  LENGTH  20  MS  CHANNEL NO     TYPE',
    14: 'C14 TAPER: START LENGTH       MS END LENGTH       MS TYPE',
    15: 'C15 SPREAD: OFFSET        MAX DISTANCE        GROUP INTERVAL',
    16: 'C16 GEOPHONES: PER GROUP     SPACING     FREQUENCY     MFG          MODEL',
    17: 'C17     PATTERN:                           LENGTH        WIDTH',
    18: 'C18 TRACESSORTED BY : RECORD',
    19: 'C19 AMPLITUDE RECOVE RY:',
    20: 'C20 MAP PROJECTION                      ZONE ID       COORDINATE UNITS 2',
    21: 'C21 PROCESSING:',
    22: 'C22 PROCESSING:',
    39: 'C39 SEG Y REV1',
    40: 'C40 END TEXTUAL HEDAER',
}

# One field after the other, in the order of the standard.
BINARY = ('>iii' 'hh' 'HHHH' 'hhhhhhhhhhhhhhhhhh' '240x' 'hhh' '94x')
TRACE = ('>iiiiiii' 'hhhh' '32x' 'hh' 'iiii' 'h' 'h' '22x' 'HH' '38x' 'hhhhhh' '12x' 'ii' '12x' 'h' '12x' 'h' '24x')


def arc(radians):
    # Coordinates are single-precision radians in the recording; these values are exact in it.
    import math
    degrees = radians * 180.0 / math.acos(-1.0)
    return int(degrees * 3600.0 * 1000.0)


TIMES = [(2024, 31 + 29, 23, 59, 58), (2024, 366, 0, 0, 0), (2023, 31 + 28 + 1, 1, 2, 3)]


def segy():
    text = ''.join(CARDS.get(n, 'C%d' % n).ljust(80) for n in range(1, 41))
    text = text[:3199] + '\0'
    out = text.encode('cp037')
    interval = 1000000 // PINGS[0][2]
    n = len(PINGS[0][15])
    binary = struct.pack(BINARY, 0, 0, 1, 1, 0, interval, interval, n, n,
                         3, 1, 1, 1, 20, 150, 20, 4, 0, 0, 0, 3, 0, 0, 1, 1, 2, 1, 0, 0, 0)
    assert len(binary) == 400, len(binary)
    out += binary
    for trace, (p, t) in enumerate(zip(PINGS, TIMES), 1):
        x, y = arc(p[10]), arc(p[9])
        head = struct.pack(TRACE, p[1], trace, p[1], p[1], p[1], p[1], 1, 1, 1, 1, 1, -1000, -1000, x, y, x, y, 2,
                           SOUND_SPEED, len(p[15]), 1000000 // p[2], *t, 4, x, y, 1, 1)
        assert len(head) == 240, len(head)
        out += head + struct.pack('>%dH' % len(p[15]), *p[15])
    return out


def gll(p):
    import math
    import time

    def ddmm(radians):
        degrees = abs(radians) / 0.017453292519943295
        return math.floor(degrees) * 100 + (degrees - math.floor(degrees)) * 60

    body = 'GPGLL,%.7f,%s,%.7f,%s,%s.00,%s,A' % (
        ddmm(p[9]), 'S' if p[9] < 0 else 'N', ddmm(p[10]), 'W' if p[10] < 0 else 'E',
        time.strftime('%H%M%S', time.gmtime(p[12])), 'A' if p[14] > 0 else 'V')
    total = 0
    for c in body:
        total ^= ord(c)
    return '%s*%02X' % (body, total)


def text_block(p):
    lines = ['#DeviceID 000', '#TimeWork %d' % p[0], '#Ping %d' % p[1], '#Altitude %.4f' % p[5],
             '#Temperature %.2f' % p[6], '#NSamples %d' % len(p[15]), '#Sampling_Frequency,Hz %d' % p[2],
             '#Tx_Frequency,Hz %d' % p[4], '#Range,m %.1f' % p[3], '#OutputMode 4', '#Pitch,deg %.4f' % p[7],
             '#Roll,deg %.4f' % p[8], '#gpsLatitude,radian %.9f' % p[9], '#gpsLongitude,radian %.9f' % p[10],
             '#gpsAltitude,m %f' % p[11], '#gpsPDOP %f' % p[13], '#gpsvalid %d' % p[14], '', '####DataStart']
    if 100000 // PINGS[0][2] == 1:  # the first ping decides for all
        lines += ['%d' % s for s in p[15][1::2]]
    lines += ['##DataEnd']
    text = ''.join(line + '\r\n' for line in lines)
    if p[14] > 0 or p[9] > 0:
        return text + '$' + gll(p) + '\r\n\r\n\r\n'
    return text + '\r\n\r\n'


def main():
    folder = sys.argv[1] if len(sys.argv) > 1 else HERE
    files = {
        'three_pings.log': b''.join(frame(p) for p in PINGS),
        'three_pings.sgy': segy(),
        'three_pings_txt.log': ''.join(text_block(p) for p in PINGS).encode('ascii'),
    }
    for name, content in files.items():
        with open(os.path.join(folder, name), 'wb') as out:
            out.write(content)


if __name__ == '__main__':
    main()
