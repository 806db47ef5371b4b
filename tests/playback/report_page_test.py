#!/usr/bin/env python3
"""The pages of echotool report as a browser shows and prints them, headless Chromium led through its pipe:
report_page_test.py ECHOTOOL DATA_FOLDER"""
import base64
import fcntl
import json
import math
import os
import pathlib
import struct
import subprocess
import sys
import tempfile

ECHOTOOL = sys.argv[1]
INFO = b'INFO:1,450000,30000,0.1,20,0.0,0,15,0.14,0,150,20,0,1500.0,100\r\n'
NAME = 'a<&"_name_as_long_as_those_of_a_survey_line_in_a_harbour_20250314_093005_Single_450kHz_id_E3105_bin.log'
EVENTS = 'UTC,event,detail\r\n2025-11-21T23:00:10.000Z,mark,"7, ping 3, 5.000 m, 54.30000000 10.10000000, wreck <&"\r\n'
PAPER = int((210 - 2 * 13) / 25.4 * 96)  # of A4 between its margins
problems = []

# The lowest contrast of a text with what is behind it, and the text; the width that is needed; what sticks out to the
# right without a way to scroll there; charts without a line.
LOOK = '''(() => {
  const parts = c => (c.match(/[\\d.]+/g) || []).map(Number);
  const light = c => { const l = parts(c).slice(0, 3).map(v => (v /= 255) <= .03928 ? v / 12.92 : ((v + .055) / 1.055) ** 2.4);
    return .2126 * l[0] + .7152 * l[1] + .0722 * l[2]; };
  const behind = e => { for (; e; e = e.parentElement) { const c = getComputedStyle(e).backgroundColor;
    if (parts(c).length < 4 || parts(c)[3]) return c; } return 'rgb(255, 255, 255)'; };
  let worst = [99, ''];
  const texts = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
  while (texts.nextNode()) {
    const node = texts.currentNode, style = getComputedStyle(node.parentElement);
    if (!node.data.trim() || node.parentElement.tagName == 'title') continue;
    const inks = [node.parentElement instanceof SVGElement ? style.fill : style.color, behind(node.parentElement)].map(light);
    const contrast = (Math.max(...inks) + .05) / (Math.min(...inks) + .05);
    if (contrast < worst[0]) worst = [contrast, node.data.trim()];
  }
  const width = document.documentElement.clientWidth;
  const outside = [...document.querySelectorAll('main *')].filter(e => e.getBoundingClientRect().right > width + 1 &&
    !(getComputedStyle(e.closest('.scroll') || e).overflowX == 'auto')).map(e => e.outerHTML.slice(0, 60));
  const flat = [...document.querySelectorAll('.box path')].filter(e => !e.getBoundingClientRect().width && !e.getBoundingClientRect().height).length;
  const picture = (document.querySelector('.box img') || document.body).getBoundingClientRect();
  return {worst, scroll: document.documentElement.scrollWidth, outside: outside.slice(0, 3), flat,
    charts: document.querySelectorAll('.box').length, picture: [picture.x, picture.y + scrollY, picture.width, picture.height]};
})()'''


def expect(what, holds, seen=''):
    if not holds:
        problems.append('%s: %r' % (what, seen))


def ping(i):
    depth = 5 + math.sin(i / 40)
    bottom = int(depth / 1500 * 2 * 100_000)
    samples = [max(0, 3900 - 40 * abs(k - bottom)) + 300 * (k > bottom) + k % 60 for k in range(900)]
    return struct.pack('<4sIIIIIIIIfiIffffffffIfi', b'TR57', 88, 1_763_766_000 + i // 10, i % 10 * 100, 1_763_766_000 + i // 10, i + 1,
                       100_000, 0, len(samples), 30, 450_000, 0, depth, 11 + i / 300, math.sin(i / 9), math.cos(i / 7),
                       math.radians(54.3 + i / 50_000), math.radians(10.1 + i / 50_000), 37, 0, 0, 1.2, 1)[:88] + struct.pack(
                           '<900H', *samples)


class Browser:
    """Requests of the DevTools protocol; what is told in between is kept in `events`."""

    def __init__(self, folder):
        (reads, self.out), (self.into, writes) = os.pipe(), os.pipe()
        ends = [fcntl.fcntl(end, fcntl.F_DUPFD, 10) for end in (reads, writes)]
        self.process = subprocess.Popen(
            ['chromium', '--headless=new', '--no-sandbox', '--disable-gpu', '--disable-dev-shm-usage', '--no-first-run',
             '--hide-scrollbars', '--remote-debugging-pipe', '--user-data-dir=' + folder], stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, close_fds=False,
            preexec_fn=lambda: [os.dup2(end, number) for end, number in zip(ends, (3, 4))])
        for end in (reads, writes, *ends):
            os.close(end)
        self.heard, self.count, self.events, self.session = b'', 0, [], {}
        target = self('Target.createTarget', url='about:blank')['targetId']
        self.session = {'sessionId': self('Target.attachToTarget', targetId=target, flatten=True)['sessionId']}
        for domain in ('Page', 'Runtime', 'Log', 'Network'):
            self(domain + '.enable')

    def read(self):
        while b'\0' not in self.heard:
            piece = os.read(self.into, 1 << 20)
            if not piece:
                sys.exit('chromium has gone')
            self.heard += piece
        message, self.heard = self.heard.split(b'\0', 1)
        return json.loads(message)

    def __call__(self, method, **parameters):
        self.count += 1
        os.write(self.out, json.dumps({'id': self.count, 'method': method, 'params': parameters, **self.session}).encode() + b'\0')
        while True:
            answer = self.read()
            if answer.get('id') == self.count:
                return answer['result']
            self.events.append(answer)

    def open(self, path):
        self.events = []
        self('Page.navigate', url=pathlib.Path(path).as_uri())
        while all(event['method'] != 'Page.loadEventFired' for event in self.events):
            self.events.append(self.read())

    def look(self, width, dark, media=''):
        self('Emulation.setDeviceMetricsOverride', width=width, height=900, deviceScaleFactor=1, mobile=False)
        self('Emulation.setEmulatedMedia', media=media, features=[{'name': 'prefers-color-scheme', 'value': 'dark' if dark else 'light'}])
        return self('Runtime.evaluate', expression=LOOK, returnByValue=True)['result']['value']

    def picture(self, x, y, width, height):
        """How many colours there are in it, and its first."""
        clip = {'x': x, 'y': y, 'width': width, 'height': height, 'scale': 1}
        png = base64.b64decode(self('Page.captureScreenshot', captureBeyondViewport=True, clip=clip)['data'])
        told = subprocess.run(['convert', 'png:-', '-format', '%k %[fx:p{0,0}.lightness]', 'info:'], input=png, check=True,
                              capture_output=True).stdout.split()
        return int(told[0]), float(told[1])


def check_screens(browser, page, charts):
    for width, dark, media in ((1400, False, ''), (1400, True, ''), (400, False, ''), (400, True, ''), (PAPER, True, 'print')):
        what = '%s, %d wide, %s %s' % (os.path.basename(page)[:5], width, 'dark' if dark else 'light', media)
        seen = browser.look(width, dark, media)
        expect('contrast of ' + what, seen['worst'][0] >= 4.5, seen['worst'])
        expect('width of ' + what, seen['scroll'] <= width and not seen['outside'], seen)
        expect('charts of ' + what, seen['charts'] == charts and not seen['flat'], seen)
        if charts:
            expect('echogram of ' + what, browser.picture(*seen['picture'])[0] > 20, seen['picture'])
        expect('paper of ' + what, (browser.picture(0, 0, 9, 9)[1] < 0.3) == (dark and not media), what)


def check_paper(browser, page, most):
    browser('Emulation.setEmulatedMedia', media='', features=[])
    pdf = page[:-5] + '.pdf'
    with open(pdf, 'wb') as out:
        out.write(base64.b64decode(browser('Page.printToPDF', preferCSSPageSize=True, printBackground=True)['data']))
    told = subprocess.run(['pdfinfo', pdf], check=True, capture_output=True, text=True).stdout
    expect('size of paper', '(A4)' in told, told)
    shown = subprocess.run(['pdftoppm', '-gray', '-r', '60', pdf], check=True, capture_output=True).stdout
    pages = shown.split(b'P5\n')[1:]
    expect('pages', 1 <= len(pages) <= most, len(pages))
    for picture in pages:
        size, _, grey = picture.split(b'\n', 2)
        width, height = map(int, size.split())
        rows = [grey[y * width:(y + 1) * width] for y in range(height)]
        expect('right margin', all(min(row[-28:]) > 250 for row in rows), pdf)
        expect('something on it', sum(min(row) < 200 for row in rows) > height / 6, pdf)


def main(folder):
    pings = [ping(i) for i in range(300)]
    for name, content in ((NAME, INFO + b''.join(pings[:100]) + b'~' * 500 + b''.join(pings[105:])), ('one.log', INFO + pings[0]),
                          ('events.csv', EVENTS.encode())):
        with open(os.path.join(folder, name), 'wb') as out:
            out.write(content)
    subprocess.run([ECHOTOOL, 'report', *(os.path.join(folder, name) for name in (NAME, 'one.log'))], check=True, capture_output=True)
    browser = Browser(os.path.join(folder, 'profile'))
    for name, charts, pages in ((NAME[:-4], 4, 2), ('one', 4, 2), ('index', 0, 1)):
        page = os.path.join(folder, name + '.html')
        browser.open(page)
        check_screens(browser, page, charts)
        check_paper(browser, page, pages)
        for event in browser.events:
            told = json.dumps(event['params'])[:200]
            expect('console', event['method'] not in ('Runtime.consoleAPICalled', 'Runtime.exceptionThrown', 'Log.entryAdded'), told)
            if event['method'] == 'Network.requestWillBeSent':
                expect('network', event['params']['request']['url'].startswith(('file:', 'data:')), told)
    browser('Browser.close')
    browser.process.wait(timeout=20)


with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as work:
    main(work)
for problem in problems:
    print(problem)
sys.exit(1 if problems else 0)
