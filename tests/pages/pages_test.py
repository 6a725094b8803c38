#!/usr/bin/python3
# The built pages in a real browser: tests/pages/pages_test.py build/docs
import subprocess
import sys
from pathlib import Path

from selenium import webdriver
from selenium.webdriver.common.keys import Keys

here = Path(__file__).resolve().parent
root = Path(sys.argv[1]).resolve()
pages = sorted(root.rglob('*.html'))
pictures = sorted(root.glob('help/**/*.svg'))
version = subprocess.check_output([here / '../../tools/version'], text=True).strip()

views = [(width, scheme, 'screen') for width in (360, 800, 1280) for scheme in ('light', 'dark')]
# On paper, and where no media query applies, as in an old browser.
views += [(800, 'dark', 'print'), (800, 'dark', 'tty')]

# What is typed into the filter box, and what of the list is left.
filters = [
    ('executememory', lambda names: 'ExecuteMemoryMT' in names and len(names) < 9),
    ('MemoryBlock COMPILE', lambda names: 'CompileMemory' in names and len(names) < 9),
    ('no such member', lambda names: not names),
    ('', lambda names: len(names) > 100),
]

failures = 0


def check(where, complaints):
    global failures
    failures += len(complaints)
    for complaint in complaints[:3]:
        print(f'{where}: {complaint}')
    if len(complaints) > 3:
        print(f'{where}: and {len(complaints) - 3} more')


def start():
    options = webdriver.ChromeOptions()
    for flag in ('--headless=new', '--no-sandbox', '--disable-gpu'):
        options.add_argument(flag)
    options.set_capability('goog:loggingPrefs', {'browser': 'ALL'})
    return webdriver.Chrome(options=options)


def ask(browser, question):
    return browser.execute_script((here / 'in_page.js').read_text() + f'return {question};')


def show(browser, width, scheme, media):
    preference = {'name': 'prefers-color-scheme', 'value': scheme}
    browser.execute_cdp_cmd('Emulation.setEmulatedMedia', {'media': media, 'features': [preference]})
    size = {'width': width, 'height': 900, 'deviceScaleFactor': 1, 'mobile': False}
    browser.execute_cdp_cmd('Emulation.setDeviceMetricsOverride', size)


# Whether it can be read, in every view.
def look(browser, file):
    browser.get(file.as_uri())
    for width, scheme, media in views:
        show(browser, width, scheme, media)
        found = ask(browser, f'[...tooWide({width}), ...hardToRead()]')
        check(f'{file.relative_to(root)} at {width}, {media} {scheme}', found)
    show(browser, *views[0])


# What the page has; answers the length of its text.
def read(browser, page):
    browser.get(page.as_uri())
    content = ask(browser, 'contents()')
    complaints = ask(browser, 'wronglyColoured()') + [f'shows no {image}' for image in content['missing']]
    if content['navigation'] < 5:
        complaints.append('has no navigation')
    if not content['foot'].endswith(f' {version}'):
        complaints.append(f'is not of version {version}')
    check(page.relative_to(root), complaints)
    return content['words']


def filter_members(browser):
    browser.get((root / 'help/members.html').as_uri())
    for typed, is_left in filters:
        box = browser.find_element('css selector', '#filter input')
        box.send_keys(Keys.CONTROL + 'a', Keys.NULL, Keys.DELETE, typed)
        links = browser.find_elements('css selector', '#members li a')
        names = [link.text for link in links if link.is_displayed()]
        if not is_left(names):
            check('members', [f'"{typed}" leaves {len(names)}: {names[:9]}'])


def read_without_script(browser, words):
    browser.execute_cdp_cmd('Emulation.setScriptExecutionDisabled', {'value': True})
    for page, scripted in words.items():
        browser.get(page.as_uri())
        plain = ask(browser, 'contents()')['words']
        if plain < scripted - 40:
            check(page.relative_to(root), [f'without script {plain} characters of {scripted}'])


if len(pages) < 10 or len(pictures) < 5:
    sys.exit(f'few pages in {root}; make docs builds them')
with start() as browser:
    for file in pages + pictures:
        look(browser, file)
    filter_members(browser)
    words = {page: read(browser, page) for page in pages}
    read_without_script(browser, words)
    check('console', [entry['message'] for entry in browser.get_log('browser')])
print(f'{len(pages)} pages, {len(pictures)} pictures, {len(views)} views each: {failures} complaints')
sys.exit(failures > 0)
