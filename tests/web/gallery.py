#!/usr/bin/python3
"""The gallery's page in a browser without a screen: gallery.py PROGRAM PHOTO SCREENSHOTS.

Drags the wipe line, moves it with keys, copies a command line, filters, changes light and dark, at
360 and 1,600 pixels, and leaves a screenshot of each.
"""
import pathlib
import subprocess
import sys
import tempfile

from selenium import webdriver
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

program, photo, screenshots = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3])
screenshots.mkdir(parents=True, exist_ok=True)


def open_browser(width):
    options = webdriver.ChromeOptions()
    for argument in ("--headless=new", "--no-sandbox", "--hide-scrollbars", "--disable-gpu",
                     f"--window-size={width},900"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    service = webdriver.chrome.service.Service("/usr/bin/chromedriver")
    browser = webdriver.Chrome(service=service, options=options)
    # A window has a least width; what the page gets is set here.
    browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
        "width": width, "height": 900, "deviceScaleFactor": 1, "mobile": False})
    return browser


def at(card):
    """Where the line stands, in per cent, as the browser paints it."""
    line = card.find_element(By.CLASS_NAME, "line").rect
    wipe = card.find_element(By.CLASS_NAME, "wipe").rect
    return (line["x"] + line["width"] / 2 - wipe["x"]) / wipe["width"] * 100


def near(value, wanted, what):
    assert abs(value - wanted) < 1.5, f"{what}: {value}, not {wanted}"


def look(width, page, count, name):
    browser = open_browser(width)
    try:
        browser.get(page.as_uri())
        cards = browser.find_elements(By.CLASS_NAME, "card")
        assert len(cards) == count, len(cards)
        sizes = browser.execute_script(
            "return [...document.images].map(i => [i.naturalWidth, i.complete])")
        assert all(complete and size > 100 for size, complete in sizes), sizes
        overflow = browser.execute_script(
            "return document.documentElement.scrollWidth - innerWidth")
        assert overflow <= 0, f"{overflow} pixels wider than the window"

        card = cards[1]
        wipe = card.find_element(By.CLASS_NAME, "wipe")
        near(at(card), 50, "at first")
        reach = wipe.rect["width"] * 0.3
        browser.execute_script("arguments[0].scrollIntoView({block: 'center'})", wipe)
        (ActionChains(browser).move_to_element(wipe).click_and_hold()
         .move_by_offset(int(-reach / 2), 0).move_by_offset(int(-reach / 2), 0).release().perform())
        near(at(card), 20, "after a drag")
        browser.save_screenshot(str(screenshots / f"{name}-dragged.png"))

        ActionChains(browser).send_keys(Keys.ARROW_RIGHT * 10).perform()
        near(at(card), 25, "after ten arrows")
        ActionChains(browser).send_keys(Keys.END).perform()
        near(at(card), 100, "at the end")
        ActionChains(browser).send_keys(Keys.HOME).perform()
        near(at(card), 0, "at the beginning")

        # The next stop of the keyboard is the button that copies; the page then has a field to
        # paste into, which shows what is on the clipboard.
        browser.execute_cdp_cmd("Browser.grantPermissions", {
            "permissions": ["clipboardReadWrite", "clipboardSanitizedWrite"]})
        ActionChains(browser).send_keys(Keys.TAB, Keys.ENTER).perform()
        command = card.find_element(By.TAG_NAME, "code").text
        assert command.startswith("cmdtexture apply "), command
        field = browser.find_element(By.ID, "filter")
        field.click()
        ActionChains(browser).key_down(Keys.CONTROL).send_keys("v").key_up(Keys.CONTROL).perform()
        assert field.get_attribute("value") == command, field.get_attribute("value")
        field.clear()
        title = cards[-1].find_element(By.TAG_NAME, "h3").get_attribute("textContent")
        field.send_keys(title.upper())
        shown = [c for c in cards if c.is_displayed()]
        assert shown and shown[-1] == cards[-1] and len(shown) < count, title
        field.send_keys(Keys.BACKSPACE * len(title))

        def paper():
            return browser.execute_script("return getComputedStyle(document.body).backgroundColor")
        before = paper()
        browser.execute_script("scrollTo(0, 0)")
        browser.find_element(By.ID, "theme").click()
        assert paper() != before
        browser.save_screenshot(str(screenshots / f"{name}-other-theme.png"))
        said = [entry for entry in browser.get_log("browser") if entry["level"] == "SEVERE"]
        assert not said, said
    finally:
        browser.quit()
    return command


with tempfile.TemporaryDirectory() as folder:
    folder = pathlib.Path(folder)

    def gallery(name, *options):
        subprocess.run([program, "gallery", photo, "-d", folder / name, "--quiet", *options],
                       check=True, stderr=subprocess.DEVNULL)
        return folder / name / "index.html"

    pages = (gallery("effects"), 14), (gallery("presets", "--effect", "Tiles", "--presets"), 6)
    for page, count in pages:
        for width in (360, 1600):
            name = f"gallery-{page.parent.name}-{width}"
            command = look(width, page, count, name)
            print(f"{name}: dragged, moved by keys, copied, filtered, changed light and dark")
        # The command line makes what the card shows.
        (folder / "bin").mkdir(exist_ok=True)
        (folder / "bin" / "cmdtexture").unlink(missing_ok=True)
        (folder / "bin" / "cmdtexture").symlink_to(program)
        made = folder / command.split(" -o ")[1].split()[0]
        subprocess.run(["sh", "-c", command], check=True, cwd=folder, stderr=subprocess.DEVNULL,
                       env={"PATH": f"{folder}/bin:/usr/bin:/bin"})
        assert made.read_bytes() == (page.parent / made.name).read_bytes(), command
