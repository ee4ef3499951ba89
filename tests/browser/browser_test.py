#!/usr/bin/python3
"""Opens the house report and the simulator's page in Chromium: browser_test.py FOLDER_OF_PROGRAMS FOLDER_FOR_PICTURES.

Needs Debian's Python, for which Debian has Selenium. Nothing leaves 127.0.0.1. Pictures of all that was looked at stay
in the second folder; the README shows two of them.
"""
import base64, os, pathlib, re, subprocess, sys, tempfile, time

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.support.ui import Select

here = pathlib.Path(__file__).resolve().parent
sys.dont_write_bytecode = True
sys.path.append(str(here.parent / "cli"))
from houses import full_house, odd_house

programs, pictures = (pathlib.Path(word).resolve() for word in sys.argv[1:3])
WIDTHS, SCHEMES = (390, 800, 1400), ("light", "dark")
PATIENCE = 120  # seconds: what no machine needs
# How many sheets a report may have: (house, fewest, most).
SHEETS = [("report", 2, 6), ("full", 12, 26)]
# The button that is pressed, the number beside it, the requests that it is set for, and what the next calls say.
REFUSED, DONE = "7  (status 7 of the controller)\n", "0  (done)\nMode=T1\n"
FAULTS = [("status", "7", "1", [REFUSED, DONE]),
          ("disconnect", None, "1", ["252  (no reply, or one of a wrong length)\n", DONE]),
          ("status", "7", "*", [REFUSED, REFUSED])]
faults = []


def expect(fulfilled, otherwise):
    faults.extend([] if fulfilled else [otherwise])


def until(what, condition):
    """Waits for a condition; returns what it came to."""
    end = time.monotonic() + PATIENCE
    while not (value := condition()):
        if time.monotonic() > end:
            raise TimeoutError(what)
        time.sleep(0.05)
    return value


def output(*words):
    return subprocess.run(words, capture_output=True, check=True, timeout=PATIENCE).stdout


def velk(*words, check=True):
    return subprocess.run([programs / "velk", *words], cwd=work, capture_output=True, text=True, check=check,
                          timeout=PATIENCE)


# --- The browser


def start_browser():
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for argument in ("headless=new", "no-first-run", "no-default-browser-check", "no-proxy-server",
                     "disable-background-networking", "disable-component-update", "disable-sync", "disable-default-apps",
                     "disable-domain-reliability", "disable-breakpad", "disable-dev-shm-usage", "disable-gpu",
                     "disable-features=OptimizationHints,MediaRouter,Translate",
                     "host-resolver-rules=MAP * ~NOTFOUND, EXCLUDE 127.0.0.1", f"user-data-dir={work / 'profile'}",
                     "hide-scrollbars", "window-size=1400,1000", *(["no-sandbox"] if os.geteuid() == 0 else [])):
        options.add_argument("--" + argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    browser = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
    for limit in (browser.set_page_load_timeout, browser.set_script_timeout):
        limit(PATIENCE)
    command = browser.execute_cdp_cmd
    command("Browser.setDownloadBehavior", {"behavior": "allow", "downloadPath": str(work / "saved")})
    command("Page.addScriptToEvaluateOnNewDocument", {"source": (here / "probes.js").read_text()})
    return browser


def show(width, scheme, height=1000):
    browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                            {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})
    # Nothing moves: where a page still scrolls, a press misses.
    media = {"prefers-color-scheme": scheme, "prefers-reduced-motion": "reduce"}
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia",
                            {"features": [{"name": name, "value": value} for name, value in media.items()]})


def picture(name, part=None):
    shot = browser.execute_cdp_cmd("Page.captureScreenshot", {"captureBeyondViewport": True, **({"clip": part} if part else {})})
    (pictures / f"{name}.png").write_bytes(base64.b64decode(shot["data"]))


def picture_for_readme(name, first, last, width, scale, prepare=""):
    """What the README shows: the page from one element to another, both whole, a bit smaller, logs at their end."""
    show(width, "light")
    top, bottom = browser.execute_script("""document.activeElement.blur();
        for (const region of document.querySelectorAll('[role=region]')) region.scrollTop = 0;
        for (const log of document.querySelectorAll('[role=log]')) log.scrollTop = log.scrollHeight;
        const [first, last] = [...arguments].map(one => document.querySelector(one).getBoundingClientRect());
        """ + prepare + """
        return [first.top + scrollY, last.bottom + scrollY]""", first, last)
    picture(f"readme-{name}", {"x": 0, "y": top, "width": width, "height": bottom - top, "scale": scale})


def probe(name):
    return browser.execute_script(f"return probes.{name}()")


def check_keyboard(name):
    """Each control is reached by the tabulator, is seen then, and has a name."""
    controls, reached = probe("controls"), set()
    for element in browser.find_elements(By.CSS_SELECTOR, "[data-control]"):
        expect(element.accessible_name, f"{name}: no name: {element.get_attribute('outerHTML')[:80]}")
    for _ in range(2 * len(controls) + 20):
        for kind in ("rawKeyDown", "keyUp"):
            browser.execute_cdp_cmd("Input.dispatchKeyEvent",
                                    {"type": kind, "key": "Tab", "code": "Tab", "windowsVirtualKeyCode": 9})
        number, seen, what = probe("focused")
        if number in reached:  # it came round
            break
        reached.update([number] if number >= 0 else [])
        expect(seen, f"{name}: the focus is not seen on {what}")
    faults.extend(f"{name}: the keyboard does not reach {what}" for i, what in enumerate(controls) if i not in reached)


def check_console(name, expected="nothing"):
    faults.extend(f"{name}: the console has {entry['message']}" for entry in browser.get_log("browser")
                  if entry["level"] == "SEVERE" and expected not in entry["message"])


def look(name, keyboard=True):
    """Looks at the page that is open, in all widths and schemes."""
    for width in WIDTHS:
        for scheme in SCHEMES:
            show(width, scheme)
            at = f"{name}-{width}-{scheme}"
            picture(at)
            faults.extend(f"{at}: {fault}" for fault in probe("look"))
        if keyboard:
            check_keyboard(f"{name}-{width}")
    check_console(name)


# --- The report


def check_print(name, fewest, most):
    """Prints the open page from a dark screen on A4."""
    paper = pictures / f"{name}.pdf"
    show(1400, "dark")
    printed = browser.execute_cdp_cmd("Page.printToPDF", {"preferCSSPageSize": True, "printBackground": True})
    paper.write_bytes(base64.b64decode(printed["data"]))
    told = output("pdfinfo", paper).decode()
    sheets = int(re.search(r"^Pages: +(\d+)", told, re.M)[1])
    expect(fewest <= sheets <= most, f"{name} prints on {sheets} sheets")
    expect(re.search(r"^Page size: .*\(A4\)", told, re.M), f"{name} is not printed on A4")
    words = output("pdftotext", paper, "-").decode().split("\f")[:-1]
    faults.extend(f"{name}: sheet {i} is all but empty" for i, text in enumerate(words, 1) if len(text.split()) < 20)
    for i in range(1, sheets + 1):
        dots = output("pdftoppm", "-gray", "-r", "10", "-f", str(i), "-l", str(i), paper)[-8000:]  # behind the header
        expect(sum(dots) > 180 * len(dots), f"{name}: sheet {i} is dark")


def check_reports():
    (work / "full.json").write_text(full_house())
    (work / "odd.json").write_text(odd_house())
    velk("backup", "--simulate", "--modules", "090500,110100", "house.json")
    for name, *houses in (("report", "house.json"), ("full", "full.json"), ("odd", "odd.json"),
                          ("changes", "house.json", "full.json")):
        velk("report", *houses, "--title", "Elm Street 5", "-o", f"{name}.html")
        browser.get((work / f"{name}.html").as_uri())
        look(name)
        if name == "report":
            picture_for_readme(name, "#links", "#week", 1100, 0.8)
        for wanted, fewest, most in SHEETS:
            if wanted == name:
                check_print(name, fewest, most)


# --- The simulator's page


def find(selector):
    return browser.find_element(By.CSS_SELECTOR, selector)


def text_of(selector):
    return browser.execute_script("return document.querySelector(arguments[0]).textContent", selector)


def says(wanted):
    until(f"the page does not say {wanted}", lambda: wanted in text_of("#said"))


def rows_of_trace():
    return browser.execute_script("return [...document.querySelectorAll('#trace-rows li')].map(row => row.textContent)")


def call(port):
    return velk("call", "--tcp", f"127.0.0.1:{port}", "Ctl_Param", "R", "5", "", check=False)


def check_trace(port):
    before = len(rows_of_trace())
    expect(call(port).stdout.startswith(DONE), "Ctl_Param fails without a fault")
    until("the trace does not grow", lambda: len(rows_of_trace()) > before)
    until("the trace does not tell of output 5", lambda: any("output 5" in row for row in rows_of_trace()))
    find("#trace-pause").click()
    stopped = len(rows_of_trace())
    call(port)
    until("the button does not count", lambda: re.fullmatch(r"Go on \([1-9]\d* new\)", text_of("#trace-pause")))
    expect(len(rows_of_trace()) == stopped, "the trace goes on when it was stopped")
    find("#trace-pause").click()
    expect(len(rows_of_trace()) > stopped, "the trace does not go on")


def check_lit():
    """What was written stays marked so while hosts read it back, on a clock that stands still in between."""
    told = browser.execute_script("""
        const [real, told] = [performance.now, []];
        let now = performance.now();
        performance.now = () => now;
        const output = things.find(thing => thing.title === 'output 5');
        stopFollowing();
        choose(output);
        const mark = later => {
          now += later;
          touch({a: 'V', p: 5, o: 65, k: 1, w: 0});
          putOut();
          drawMemory();
          const line = [...lineKeys(output).keys()].indexOf('V 0540');
          told.push([0, 1].map(n => byId('memory-lines').children[line].cells[1 + n].className).join(' ') + '/' +
              ['written', 'read'].filter(name => output.cell.classList.contains(name)).join(' '));
        };
        touch({a: 'V', p: 5, o: 64, k: 1, w: 0});
        touch({a: 'V', p: 5, o: 64, k: 2, w: 1});
        for (const later of [0, 1499, 1]) mark(later);
        performance.now = real;
        byId('memory-follow').checked = true;
        return told;""")
    expect(told == ["written written/written"] * 2 + [" read/read"], f"what was just written is marked {told}")


def press_fault(kind, number, which):
    """Presses the button of a fault; returns the fault as text."""
    form = browser.find_element(By.XPATH, f"//*[@id='fault-kinds']//form[.//button='{kind}']")
    Select(find("#fault-which")).select_by_value(which)
    if number:
        field = form.find_element(By.CSS_SELECTOR, "input")
        field.clear()
        field.send_keys(number)
    form.find_element(By.CSS_SELECTOR, "button").click()
    fault = kind + ("=" + number if number else "") + "@" + which
    says(fault + " is set.")
    until(f"{fault} is not listed", lambda: fault in text_of("#fault-list"))
    return fault


def check_faults(port):
    for kind, number, which, wanted in FAULTS:
        fault = press_fault(kind, number, which)
        take_back = find("#fault-list button")
        for said in wanted:
            expect(call(port).stdout.startswith(said), f"under {fault} a call does not say {said}")
        if which == "*":
            until(f"{fault} is not counted", lambda: "0 requests" not in text_of("#fault-list"))
            take_back.click()  # which stays the one that somebody is about to press
        until(f"{fault} is still listed", lambda: "No fault is set." in text_of("#fault-list"))
    expect(call(port).returncode == 0, "a fault counts when it is over")


def check_wrong_words(simulator):
    """What is wrong is told in words of what was done, also when nobody answers any more."""
    form = browser.find_element(By.XPATH, "//*[@id='fault-kinds']//form[.//button='late']")
    field, press = form.find_element(By.CSS_SELECTOR, "input"), form.find_element(By.CSS_SELECTOR, "button")
    for wrong in ("", "-1", "1.5", "3600001"):
        field.clear()
        field.send_keys(wrong)
        browser.execute_script("document.querySelector('#said').textContent = ''")
        press.click()
        says("late: MS is a whole number from 0 to 3600000.")
    expect("No fault is set." in text_of("#fault-list"), "a fault is set that nobody asked for")
    (work / "torn.json").write_text("{")
    find("#load").send_keys(str(work / "torn.json"))
    says("torn.json: this is no JSON: line 1")
    simulator.terminate()
    simulator.wait()
    find("#fault-none").click()
    says("The simulator does not answer. Has it ended?")
    until("the page does not see the end", lambda: text_of("#live") == "connection lost")
    check_console("wrong words", "Failed to load resource")
    browser.get("about:blank")  # which asks for nothing more
    browser.get_log("browser")


def check_files(port):
    """A house that is loaded is served, and saved as it was loaded."""
    find("#load").send_keys(str(work / "full.json"))
    says("full.json is loaded.")
    until("the outputs are those of before", lambda: "Output name 0004" in text_of("#outputs"))
    expect("Output name 0060" in velk("outputs", "--tcp", f"127.0.0.1:{port}").stdout, "the house is not served")
    find("#save").click()
    saved = work / "saved" / "house.json"
    until("no house is saved", saved.exists)
    told = velk("diff", "full.json", str(saved), check=False)
    expect(told.returncode == 0, f"what is saved differs:\n{told.stdout}")


def check_simulator():
    simulator = subprocess.Popen([programs / "velk-sim", "--tcp", "0", "--web", "0", "--for", "3600"],
                                 stdout=subprocess.PIPE, text=True)
    try:
        said = "".join(iter(simulator.stdout.readline, "ready\n"))
        port, site = re.search(r"^tcp Q .*:(\d+)$", said, re.M)[1], re.search(r"^web (\S+)$", said, re.M)[1]
        show(1400, "light")
        browser.get(site)
        until("the page is not live", lambda: text_of("#live") == "live")
        check_trace(port)
        check_faults(port)
        check_lit()
        look("simulator")
        # The bytes that the last call has read are lit once more.
        picture_for_readme("simulator", "body", "#memory-lines tr:nth-child(6)", 1200, 0.75,
                           "for (const row of rows.slice(-3)) touch(row); drawMemory();")
        check_files(port)
        look("simulator-full", keyboard=False)
        check_wrong_words(simulator)
    finally:
        simulator.terminate()
        simulator.wait()


with tempfile.TemporaryDirectory(prefix="velk-browser-") as folder:
    work = pathlib.Path(folder)
    pictures.mkdir(parents=True, exist_ok=True)
    browser = start_browser()
    try:
        check_reports()
        check_simulator()
    finally:
        check_console("at the end")
        browser.quit()
        for fault in dict.fromkeys(faults):
            print(fault)
sys.exit(bool(faults))
