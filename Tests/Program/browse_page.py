#!/usr/bin/env python3
"""Works a web page of a plan in Chromium, with real keys, mouse and touches, and prints what came of each step.

    browse_page.py PAGE.html [--shots FOLDER]

`--shots` leaves pictures of the steps and a print. The page is the illustrated example (examples/kortteli.scr).
"""

from __future__ import annotations

import argparse
import base64
import json
import os
import pathlib
import subprocess
import tempfile
from typing import Any


class Browser:
    """One page in a headless Chromium, worked through its pipe of messages."""

    def __init__(self, profile: str) -> None:
        there, self.requests = os.pipe()
        self.answers, back = os.pipe()

        def give_pipes() -> None:
            # The ends may themselves be 3 and 4.
            read, write = os.dup(there), os.dup(back)
            os.dup2(read, 3)
            os.dup2(write, 4)

        self.process = subprocess.Popen(
            ["chromium", "--headless=new", "--no-sandbox", "--disable-gpu", "--remote-debugging-pipe",
             f"--user-data-dir={profile}", "--no-first-run", "--force-color-profile=srgb", "--lang=fi", "about:blank"],
            close_fds=False, preexec_fn=give_pipes, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(there)
        os.close(back)
        self.unread = b""
        self.number = 0
        self.session: str | None = None
        self.events: list[dict[str, Any]] = []
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Network", "Runtime", "Log"):
            self.call(domain + ".enable")

    def receive(self) -> dict[str, Any]:
        while b"\0" not in self.unread:
            part = os.read(self.answers, 1 << 20)
            if not part:
                raise SystemExit("browse_page: chromium ended")
            self.unread += part
        message, self.unread = self.unread.split(b"\0", 1)
        return json.loads(message)

    def call(self, method: str, **parameters: Any) -> dict[str, Any]:
        self.number += 1
        message: dict[str, Any] = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.requests, json.dumps(message).encode() + b"\0")
        while True:
            answer = self.receive()
            if answer.get("id") == self.number:
                if "error" in answer:
                    raise SystemExit(f"browse_page: {method}: {answer['error']}")
                return answer["result"]
            self.events.append(answer)

    def close(self) -> None:
        self.session = None
        try:
            self.call("Browser.close")
        except SystemExit:
            pass
        self.process.wait(30)

    # ---- what a user does and sees ----
    def size(self, width: int, height: int, is_phone: bool = False) -> None:
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=is_phone)
        self.call("Emulation.setTouchEmulationEnabled", enabled=is_phone)

    def open(self, page: pathlib.Path) -> None:
        self.events.clear()
        self.call("Page.navigate", url=page.resolve().as_uri())
        while not any(event["method"] == "Page.loadEventFired" for event in self.events):
            self.events.append(self.receive())

    def value(self, expression: str) -> Any:
        answer = self.call("Runtime.evaluate", expression=expression, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in answer:
            raise SystemExit(f"browse_page: {expression}: {answer['exceptionDetails']}")
        return answer["result"].get("value")

    def settle(self) -> None:
        self.value("new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done)))")

    def mouse(self, kind: str, x: float, y: float, **more: Any) -> None:
        self.call("Input.dispatchMouseEvent", type="mouse" + kind, x=x, y=y, **more)
        self.settle()

    def click(self, selector: str) -> None:
        x, y = self.value(f"(() => {{ const e = document.querySelector({json.dumps(selector)}); e.scrollIntoView(); "
                          "const r = e.getBoundingClientRect(); return [r.x + r.width / 2, r.y + r.height / 2]; })()")
        for kind in ("Moved", "Pressed", "Released"):
            self.mouse(kind, x, y, **({} if kind == "Moved" else {"button": "left", "clickCount": 1}))

    def key(self, key: str) -> None:
        text = {"text": key} if len(key) == 1 else {}
        self.call("Input.dispatchKeyEvent", type="keyDown", key=key, **text)
        self.call("Input.dispatchKeyEvent", type="keyUp", key=key)
        self.settle()

    def tap(self, x: float, y: float) -> None:
        self.call("Input.dispatchTouchEvent", type="touchStart", touchPoints=[{"x": x, "y": y}])
        self.call("Input.dispatchTouchEvent", type="touchEnd", touchPoints=[])
        self.settle()


VIEW = "(() => { const b = document.querySelector('#plan > svg').viewBox.baseVal; return [b.x, b.y, b.width, b.height]; })()"
TIP = "document.getElementById('tip').hidden ? '' : document.getElementById('tip').innerText.replace(/\\s+/g, ' ').trim()"

# Some places where an element whose title begins so is on top.
PLACES = """(start) => {
  const places = [];
  for (const group of document.querySelectorAll("#plan g.line[data-title]")) {
    if (!group.dataset.title.startsWith(start)) continue;
    const path = group.querySelector("path"), place = path.getPointAtLength(path.getTotalLength() / 3);
    const point = place.matrixTransform(path.getScreenCTM());
    places.push([point.x, point.y]);
  }
  for (let y = 2; y < innerHeight && places.length < 20; y += 3)
    for (let x = 2; x < innerWidth && places.length < 20; x += 3) {
      const group = document.elementFromPoint(x, y)?.closest("g[data-title]");
      if (group && group.dataset.title.startsWith(start)) places.push([x, y]);
    }
  return places;
}"""


def main() -> None:
    parser = argparse.ArgumentParser()
    parser.add_argument("page", type=pathlib.Path)
    parser.add_argument("--shots", type=pathlib.Path)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as profile:
        browser = Browser(profile)
        try:
            work(browser, arguments.page, arguments.shots)
        finally:
            browser.close()


def work(browser: Browser, page: pathlib.Path, shots: pathlib.Path | None) -> None:
    def shot(name: str) -> None:
        if shots:
            shots.mkdir(exist_ok=True)
            (shots / f"{name}.png").write_bytes(base64.b64decode(browser.call("Page.captureScreenshot")["data"]))

    def tell(what: str, answer: Any) -> None:
        print(f"{what}: {answer}")

    def hover(start: str) -> str:
        """Moves to where such an element is on top, until the tooltip tells of it."""
        for x, y in browser.value(f"({PLACES})({json.dumps(start)})"):
            browser.mouse("Moved", x, y)
            if (said := browser.value(TIP)).startswith(start):
                return said
        return "not found"

    browser.size(1280, 800)
    browser.open(page)
    asked = [event["params"]["request"]["url"] for event in browser.events if event["method"] == "Network.requestWillBeSent"]
    tell("files asked for", len(asked))
    tell("said by the browser", [event["params"] for event in browser.events
                                 if event["method"] in ("Log.entryAdded", "Runtime.exceptionThrown")])
    shot("desktop")
    whole = browser.value(VIEW)

    browser.mouse("Wheel", 300, 300, deltaX=0, deltaY=-120)
    near = browser.value(VIEW)
    tell("wheel zooms in", near[2] < whole[2])
    browser.mouse("Pressed", 400, 400, button="left", clickCount=1)
    browser.mouse("Moved", 300, 350, button="left")
    browser.mouse("Released", 300, 350, button="left", clickCount=1)
    dragged = browser.value(VIEW)
    tell("drag moves", dragged[0] > near[0] and dragged[1] > near[1] and dragged[2] == near[2])
    for key, what in (("ArrowLeft", "left"), ("ArrowRight", "right"), ("ArrowUp", "up"), ("ArrowDown", "down"),
                      ("+", "closer"), ("-", "farther")):
        before = browser.value(VIEW)
        browser.key(key)
        after = browser.value(VIEW)
        moved = {"left": after[0] < before[0], "right": after[0] > before[0], "up": after[1] < before[1],
                 "down": after[1] > before[1], "closer": after[2] < before[2], "farther": after[2] > before[2]}
        tell(f"key {key} goes {what}", moved[what])
    browser.key("0")
    tell("key 0 shows all", browser.value(VIEW) == whole)
    for button, closer in (("#in", True), ("#out", False)):
        before = browser.value(VIEW)
        browser.click(button)
        tell(f"button {button}", (browser.value(VIEW)[2] < before[2]) == closer)
    browser.click("#whole")
    tell("button #whole", browser.value(VIEW) == whole)

    for title in ("Asfaltti", "Lauta-aita", "Rakennus", "Pihalaatta"):
        tell("hover", hover(title))
        shot("hover-" + title)
    browser.key("Escape")
    tell("Escape hides it", browser.value(TIP) == "")

    look = "getComputedStyle(document.querySelector('#plan g[data-layer=tma_nurmi]')).display"
    marks = "[...document.querySelectorAll('#layers input')]"
    browser.value(f"{marks}.find((m) => m.nextSibling.textContent === 'tma_nurmi').id = 'grass'")
    browser.click("#grass")
    tell("grass is switched off", browser.value(look) == "none")
    tell("the switch of all is between", browser.value(f"{marks}[0].indeterminate"))
    shot("layer-off")
    browser.key(" ")
    tell("and on again by key", browser.value(look) != "none")
    browser.click("#layers input")
    tell("all are off", browser.value(f"{marks}.every((m) => !m.checked)") and browser.value(look) == "none")
    browser.click("#layers input")
    tell("legend", browser.value("document.querySelectorAll('#legend li').length > 8"))
    tell("bar", browser.value("document.querySelector('#bar span').textContent"))
    heads = "[...document.querySelectorAll('h2')].map((h) => h.textContent).join(' ')"
    words = {browser.value("document.documentElement.lang"): browser.value(heads)}
    browser.click("#language")
    words[browser.value("document.documentElement.lang")] = browser.value(heads)
    tell("words", [words.get("fi"), words.get("en")])
    browser.key("t")
    tell("key t hides the panel", browser.value("getComputedStyle(document.getElementById('side')).display") == "none")
    shot("bare")

    browser.size(390, 800, is_phone=True)
    browser.open(page)
    shot("phone")
    tell("phones begin without the panel", browser.value("document.body.classList.contains('bare')"))
    browser.tap(*browser.value(f"({PLACES})('Nurmialue')")[0])
    tell("tap", browser.value(TIP).split(" ")[0])
    shot("phone-tap")
    browser.click("#panel")
    shot("phone-panel")
    if shots:
        browser.size(1280, 800)
        browser.open(page)
        (shots / "print.pdf").write_bytes(base64.b64decode(browser.call("Page.printToPDF", printBackground=True)["data"]))


if __name__ == "__main__":
    main()
