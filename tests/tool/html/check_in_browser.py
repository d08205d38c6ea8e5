"""Shows pages of `vltext FILE... --html OUT` in a browser, without a window, and checks what a person meets there.

    check_in_browser.py TOOL AXE SCREENSHOT FOLDER [PYTHON]

TOOL is the program, AXE the script of the accessibility checker. PYTHON is an interpreter with the package vltext: with
it, what notebooks show is looked at too. Each page is looked at in light and dark, on the screen of a telephone, and as
wide as 80 and 200 letters of a terminal. What is wrong is printed, and the exit status is 1. SCREENSHOT is written, and
to FOLDER a picture of each look.
scripts/check-report calls this program with all it needs.
"""
import os
import pathlib
import subprocess
import sys
import tempfile

from selenium import webdriver
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent.parent
WIDTHS = (400, 720, 1800)
MOST_SHOWN = 3000  # pixels of a page in its picture, from above
SCHEMES = ("light", "dark")
SECONDS = 20

# A name, and what is in the file. Names and cells try to be more than text.
MADE_UP = {
    "plain.csv": "day,level [cm],note\n"
    + "".join(f"2024-01-{i + 1:02},{100 + i * 7 % 13},{'good' if i % 4 else 'bad'}\n" for i in range(28)),
    "odd.csv": "id,level\n" + "".join(f"{i},{i * 3}\n" for i in range(300)) + "oops,n.v.\n301\n302,4,5\n",
    "japanese.csv": "\u65e5\u4ed8,\u6c34\u4f4d [cm],\u30e1\u30e2\n"
    + "".join(f"2024-01-{i + 1:02},{100 + i},\u826f\u597d\U0001f600\n" for i in range(25)),
    "hebrew-emoji.csv": "\u05ea\u05d0\u05e8\u05d9\u05da;\u05e9\u05dd;\U0001f468\u200d\U0001f469\u200d\U0001f467;n\n"
    + "".join(f"2024-03-{i + 1:02};\u05d3\u05e0\u05d4 {i};\U0001f44d\U0001f3fd;{i}\n" for i in range(25)),
    "arabic.csv": "\u0627\u0644\u062a\u0627\u0631\u064a\u062e,\u0627\u0644\u0627\u0633\u0645,n\n"
    + "".join(f"2024-02-{i + 1:02},\u0645\u062d\u0645\u062f \u0639\u0644\u064a,{i}\n" for i in range(25)),
    "wide.csv": ",".join(f"column number {i}" for i in range(400)) + "\n"
    + "".join(",".join(str(i * j % 101) for i in range(400)) + "\n" for j in range(30)),
    "letter.txt": "Dear reader,\n\nthis is a letter, and not a table at all.\nIt has a few lines of text.\n",
    "<script>alert(1)<!--.csv": "id,<script>alert(2)</script>,\"\"\"><img src=x onerror=alert(3)>\",x\u202ey\n"
    + "".join(f"{i},</td></table></main>,<svg onload=alert({i})>,&lt;{i % 3}\n" for i in range(25)),
}

problems: list[str] = []


def expect(is_true: bool, what: str) -> None:
    if not is_true:
        problems.append(what)


def open_browser() -> webdriver.Chrome:
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
                     "--force-color-profile=srgb"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    browser = webdriver.Chrome(options=options, service=webdriver.ChromeService("/usr/bin/chromedriver"))
    browser.set_script_timeout(60)
    browser.execute_cdp_cmd("Browser.grantPermissions",
                            {"permissions": ["clipboardReadWrite", "clipboardSanitizedWrite"]})
    return browser


def show(browser: webdriver.Chrome, page: pathlib.Path, width: int = 1000, scheme: str = "light",
         height: int = 1000) -> None:
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia",
                            {"features": [{"name": "prefers-color-scheme", "value": scheme}]})
    browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                            {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})
    browser.get(page.as_uri())


def write_page(tool: str, files: list[pathlib.Path], page: pathlib.Path) -> None:
    done = subprocess.run([tool, *map(str, files), "--html", str(page)], capture_output=True, text=True,
                          check=False)
    expect(done.returncode < 2 and done.stderr == "", f"{page.name}: vltext says {done.stderr}")


# --- every page, in every look -----------------------------------------------------------------

def check_look(browser: webdriver.Chrome, page: pathlib.Path, axe: str, width: int, scheme: str,
               pictures: pathlib.Path) -> None:
    where = f"{page.name}, {width} wide, {scheme}"
    show(browser, page, width, scheme)
    browser.execute_script("for (const each of document.querySelectorAll('details')) each.open = true;")
    page_width = browser.execute_script("return document.documentElement.scrollWidth")
    expect(page_width <= width, f"{where}: the page is {page_width} wide")
    page_height = int(browser.execute_script("return document.documentElement.scrollHeight"))
    browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                            {"width": width, "height": min(page_height, MOST_SHOWN), "deviceScaleFactor": 1,
                             "mobile": False})
    browser.save_screenshot(str(pictures / f"{page.stem}-{width}-{scheme}.png"))
    browser.execute_script(axe)
    found = browser.execute_async_script(
        "const done = arguments[0]; axe.run({resultTypes: ['violations']}).then((r) => done(r.violations));")
    for violation in found:
        node = violation["nodes"][0]
        problems.append(f"{where}: {violation['id']}: {violation['help']}: {node['html'][:200]}: "
                        f"{node['failureSummary'][:300]}")
    for message in browser.get_log("browser"):  # type: ignore[no-untyped-call]
        problems.append(f"{where}: on the console: {message['message']}")


# --- one page ----------------------------------------------------------------------------------

def text_of(browser: webdriver.Chrome, selector: str) -> str:
    return browser.find_element(By.CSS_SELECTOR, selector).text


def check_texts(browser: webdriver.Chrome, page: pathlib.Path) -> None:
    show(browser, page)
    expect(text_of(browser, ".verdict") == "The table is delimited by comma, with 3 columns.",
           f"the verdict is: {text_of(browser, '.verdict')}")
    expect(text_of(browser, "h2").endswith("plain.csv"), "the heading is not the path")
    rows = browser.find_elements(By.CSS_SELECTOR, ".picture tbody tr")
    expect(rows[0].text == "1 names day,level [cm],note", f"the first line is: {rows[0].text}")
    columns = browser.find_elements(By.CSS_SELECTOR, ".columns tbody tr")
    expect(len(columns) == 3, f"{len(columns)} columns are shown")
    bars = columns[1].find_elements(By.CSS_SELECTOR, "svg rect")
    expect(len(bars) == 13 and all(bar.size["height"] > 0 for bar in bars),
           f"the histogram of 13 levels has {len(bars)} bars")
    expect("good 21 times\nbad 7 times" in columns[2].text, f"the values of a text are: {columns[2].text}")
    fill = bars[0].value_of_css_property("fill")
    show(browser, page, scheme="dark")
    dark = browser.find_element(By.CSS_SELECTOR, "svg rect").value_of_css_property("fill")
    expect(fill != dark, "the bars have one colour in light and dark")
    show(browser, page)
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"media": "print"})
    button = browser.find_element(By.CSS_SELECTOR, "button.copy")
    expect(button.value_of_css_property("display") == "none", "a button is printed")
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"media": ""})


def clipboard(browser: webdriver.Chrome) -> str:
    return str(browser.execute_async_script(
        "navigator.clipboard.readText().then(arguments[0], (e) => arguments[0]('failed: ' + e));"))


def check_copying(browser: webdriver.Chrome, tool: str, file: pathlib.Path, page: pathlib.Path) -> None:
    """With the clipboard that the browser offers a page, and as by hand where it offers none."""
    for target, spoil in (("pandas", ""), ("duckdb", "navigator.clipboard.writeText = () => Promise.reject();")):
        show(browser, page)
        browser.execute_script(spoil)
        browser.execute_script("window.byHand = 0; document.addEventListener('copy', () => { window.byHand = 1; });")
        code = browser.find_element(By.ID, f"file-1-{target}")
        details = code.find_element(By.XPATH, "./ancestor::details")
        details.find_element(By.TAG_NAME, "summary").click()
        button = details.find_element(By.CSS_SELECTOR, "button.copy")
        expect(button.is_displayed(), f"{target}: no button to copy")
        button.click()
        WebDriverWait(browser, SECONDS).until(
            lambda shown: shown.find_element(By.ID, "said").get_attribute("textContent") == "Copied")
        program = subprocess.run([tool, str(file), "--emit", target], capture_output=True, text=True,
                                 check=True).stdout
        copied = clipboard(browser)
        expect(copied == program, f"{target}: what was copied is not the program but {copied!r}, not {program!r}")
        by_hand = browser.execute_script("return window.byHand")
        expect(by_hand == (1 if spoil else 0), f"{target}: copied {'by hand' if by_hand else 'at once'}")


def check_keyboard(browser: webdriver.Chrome, page: pathlib.Path) -> None:
    show(browser, page)
    active = browser.switch_to.active_element
    active.send_keys(Keys.TAB)
    expect(browser.switch_to.active_element.text == "Skip to the report", "the first stop is not the skip link")
    browser.switch_to.active_element.send_keys(Keys.ENTER)
    expect(browser.switch_to.active_element.get_attribute("id") == "main", "the skip link does not reach the report")
    summary = browser.find_element(By.TAG_NAME, "summary")
    summary.send_keys(Keys.ENTER)
    expect(summary.find_element(By.XPATH, "..").get_attribute("open") is not None, "Enter does not open a part")
    outline = summary.value_of_css_property("outline-style")
    expect(outline == "solid", f"the focus cannot be seen: {outline}")


# --- several files -----------------------------------------------------------------------------

def check_overview(browser: webdriver.Chrome, page: pathlib.Path, num_files: int) -> None:
    show(browser, page)
    summary = text_of(browser, "nav p")
    expect(summary == "10 files: 1 group, 5 unlike all others, 1 odd one, 2 without a table.",
           f"the summary is: {summary}")
    links = browser.find_elements(By.CSS_SELECTOR, "nav a")
    expect(len(links) == num_files, f"{len(links)} links for {num_files} files")
    for link in links:
        place = str(link.get_attribute("href")).partition("#")[2]
        heading = browser.find_element(By.CSS_SELECTOR, f"#{place} h2").text
        expect(heading == link.text, f"a link to {link.text} leads to {heading}")


def check_hostile(browser: webdriver.Chrome, page: pathlib.Path) -> None:
    """Nothing of the files became an element, and none of it ran: the driver refuses to go on at a dialog."""
    show(browser, page)
    counts = browser.execute_script(
        "return ['script', 'img', 'main', 'svg[onload]', '[onerror]'].map("
        "(each) => document.querySelectorAll(each).length)")
    expect(counts == [1, 0, 1, 0, 0], f"elements that the page does not have by itself: {counts}")
    text = browser.execute_script("return document.body.textContent")
    expect("<script>alert(2)</script>" in text, "the name of a column is not shown")
    expect("\u202e" not in text, "a text can turn the direction around")
    browser.execute_script("const each = document.createElement('script'); each.textContent = 'window.ran = 1';"
                           "document.body.append(each);")
    expect(not browser.execute_script("return window.ran"), "a script that is not the page's own has run")


# --- notebooks ---------------------------------------------------------------------------------

FRAGMENT = "import sys, vltext; sys.stdout.buffer.write(vltext.detect(sys.argv[1])._repr_html_().encode())"

# A page as notebooks are, with rules for all tables, in colours of its own.
NOTEBOOK = """<!DOCTYPE html><html lang="en"><head><meta charset="utf-8"><title>Notebook</title>
<meta name="color-scheme" content="light dark"><style>
.output {{ font: 14px sans-serif; }}
.output table {{ border: none; font-size: 12px; margin: 0 auto; table-layout: fixed; }}
.output td, .output th {{ max-width: none; text-align: right; white-space: normal; }}
.output tbody tr:nth-child(even) {{ background: #777; }}
</style></head><body><main><h1>Notebook</h1><div class="output">{}<table id="other"><tbody>
<tr><td class="cell">other</td></tr></tbody></table></div></main></body></html>
"""


def write_notebook(python: str, file: pathlib.Path, page: pathlib.Path) -> None:
    done = subprocess.run([python, "-c", FRAGMENT, str(file)], capture_output=True, text=True, check=True)
    page.write_text(NOTEBOOK.format(done.stdout), encoding="utf-8")


def style_of(browser: webdriver.Chrome, selector: str, name: str) -> str:
    return browser.find_element(By.CSS_SELECTOR, selector).value_of_css_property(name)


def check_notebook(browser: webdriver.Chrome, page: pathlib.Path) -> None:
    show(browser, page)
    rows = browser.find_elements(By.CSS_SELECTOR, ".picture tbody tr")
    expect(rows[0].text == "1 names day,level [cm],note", f"a notebook: the first line is {rows[0].text}")
    colours = [style_of(browser, ".picture .cell", "color"), style_of(browser, ".picture .odd", "color"),
               style_of(browser, ".picture .delimiter", "color"), style_of(browser, "#other .cell", "color")]
    expect(len(set(colours)) == 4, f"a notebook: cells, odd cells, delimiters and other tables are {colours}")
    expect(style_of(browser, ".picture .line", "text-align") == "left", "a notebook: its rules reach the picture")
    expect(style_of(browser, ".picture tbody tr:nth-child(2)", "background-color") == "rgba(0, 0, 0, 0)",
           "a notebook: its stripes reach the picture")
    expect(style_of(browser, "#other td", "text-align") == "right", "a notebook: the rules of the picture reach others")
    show(browser, page, scheme="dark")
    expect(style_of(browser, ".picture .cell", "color") != colours[0], "a notebook: light and dark are the same")


def check_hostile_notebook(browser: webdriver.Chrome, page: pathlib.Path) -> None:
    show(browser, page)
    counts = browser.execute_script(
        "return ['script', 'img', 'main', 'svg', '[onerror]'].map((each) => document.querySelectorAll(each).length)")
    expect(counts == [0, 0, 1, 0, 0], f"a notebook has elements that came from a file: {counts}")
    text = browser.execute_script("return document.body.textContent")
    expect("<script>alert(2)</script>" in text, "a notebook: the name of a column is not shown")
    expect("\u202e" not in text, "a notebook: a text can turn the direction around")


def main() -> int:
    tool, axe_path, screenshot, pictures_path, *pythons = (os.path.abspath(each) for each in sys.argv[1:])
    pictures = pathlib.Path(pictures_path)
    pictures.mkdir(exist_ok=True)
    axe = pathlib.Path(axe_path).read_text(encoding="utf-8")
    os.chdir(ROOT)
    with tempfile.TemporaryDirectory() as folder_name:
        folder = pathlib.Path(folder_name)
        files = []
        for name, text in MADE_UP.items():
            files.append(folder / name)
            files[-1].write_text(text, encoding="utf-8")
        pages = [folder / f"page{i}.html" for i in range(len(files))]
        for file, page in zip(files, pages):
            write_page(tool, [file], page)
        more = [folder / name for name in ("second.csv", "third.csv")]
        more[0].write_text(MADE_UP["plain.csv"], encoding="utf-8")
        more[1].write_text(MADE_UP["plain.csv"].replace(",", ";"), encoding="utf-8")
        several = folder / "several.html"
        write_page(tool, files + more, several)
        example = folder / "example.html"
        write_page(tool, [pathlib.Path("examples/preamble.csv")], example)
        notebooks = [folder / f"notebook{i}.html" for i in range(len(files) if pythons else 0)]
        for file, page in zip(files, notebooks):
            write_notebook(pythons[0], file, page)

        browser = open_browser()
        try:
            check_texts(browser, pages[0])
            check_copying(browser, tool, files[0], pages[0])
            check_keyboard(browser, pages[0])
            check_overview(browser, several, len(files + more))
            if notebooks:
                check_notebook(browser, notebooks[0])
                check_hostile_notebook(browser, notebooks[-1])
            for page in pages + [several, example] + notebooks:
                for scheme in SCHEMES:
                    for width in WIDTHS:
                        check_look(browser, page, axe, width, scheme, pictures)
            check_hostile(browser, pages[-1])
            check_hostile(browser, several)
            show(browser, example, 900, height=1050)
            browser.save_screenshot(screenshot)
        finally:
            browser.quit()
    for problem in problems:
        print(problem, file=sys.stderr)
    print(f"{len(pages) + 2} pages and {len(notebooks)} notebooks in {len(SCHEMES) * len(WIDTHS)} looks: "
          f"{len(problems)} problem{'' if len(problems) == 1 else 's'}")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
