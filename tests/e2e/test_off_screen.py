"""The web application in the client's own OpenGL view, with a real pointer and keyboard."""

import os
import signal
import subprocess
import unittest

from harness import display, process
from harness.wait import wait_until
from sandbox import Sandbox

# Targets for the pointer over the web application's page. Styles are set one by one, because the page's
# content policy forbids them in markup.
PROBE = """(() => {
  const make = (parent, name, id, style) => {
    const element = document.createElement(name);
    element.id = 'probe' + id;
    element.style.cssText = style;
    parent.append(element);
    return element;
  };
  const place = make(document.body, 'div', '', 'position: fixed; left: 300px; top: 100px; ' +
    'width: 400px; height: 400px; background: #123456; z-index: 1000');
  const at = (left, top, width, height, more) => `position: absolute; left: ${left}px; ` +
    `top: ${top}px; width: ${width}px; height: ${height}px; ${more}`;
  make(make(place, 'div', '-scroll', at(200, 20, 100, 100, 'overflow: scroll')), 'div', '',
    'height: 1000px');
  const from = make(place, 'div', '-from', at(20, 200, 80, 80, 'background: #008800'));
  const to = make(place, 'div', '-to', at(250, 200, 80, 80, 'background: #880000'));
  window.probe = [];
  from.draggable = true;
  from.ondragstart = event => event.dataTransfer.setData('text', 'carried');
  from.ondragend = event => probe.push('end ' + event.dataTransfer.dropEffect);
  to.ondragenter = to.ondragover = event => {
    event.preventDefault(); event.stopPropagation(); event.dataTransfer.dropEffect = 'copy';
    window.overTarget = true; };
  to.ondrop = event => {
    event.preventDefault(); event.stopPropagation();
    probe.push('drop ' + event.dataTransfer.getData('text')); };
})()"""


class OffScreen(Sandbox):
    def start_off_screen(self, probe=False):
        service, client, page = self.start_all("--off-screen-rendering")
        page.wait_until_ready()
        if probe:
            page.evaluate(PROBE)
            self.wait_for_color(310, 490, "#123456")
        return service, client, page

    def test_sends_a_message_written_by_pointer_and_keyboard(self):
        file = self.folder / "typed.bin"
        file.write_bytes(b"contents" * 1000)
        service, client, page = self.start_off_screen()
        self.click_on(page, "#choose-files")
        self.answer_dialog("Choose files", file)
        page.wait_for_files(1)
        self.focus_window()
        self.type_into(page, "#recipients", "friend@example.org")
        self.type_into(page, "#subject", "Size 5 (a+b)")
        page.wait_for("document.querySelector('#subject').value === 'Size 5 (a+b)'")
        self.click_on(page, "#send-button")
        self.assertEqual(page.wait_until_over(120), "COMPLETED")
        self.assert_arrived(service, file)
        self.assert_leaves_cleanly(client, page)

    def test_takes_a_folder_dropped_on_the_window(self):
        folder = self.make_files(self.folder / "dropped", 12, 3_000)
        _, client, page = self.start_off_screen()
        self.drag_to_window(folder)
        page.wait_for_files(12)
        self.assertIn("OnDragEnter: Drag detected!", client.messages())
        self.assertIn("Drag data type: 1", client.messages())
        self.assert_leaves_cleanly(client, page)

    def test_scrolls_and_drags_within_the_page(self):
        _, client, page = self.start_off_screen(probe=True)
        self.point("mousemove", 550, 170, "click", 5)
        page.wait_for("document.querySelector('#probe-scroll').scrollTop > 0")

        self.point("mousemove", 360, 340, "mousedown", 1)
        for x in (370, 380, 400, 500, 580, 590):
            self.point("mousemove", x, 340)
        wait_until(lambda: self.point("mousemove_relative", 1, 0) == ""
                   and page.evaluate("window.overTarget === true"), 30, "the drag over the target")
        self.point("mouseup", 1)
        page.wait_for("probe.join() === 'drop carried,end copy'")
        self.assert_leaves_cleanly(client, page)

    def test_edits_text_with_clicks_edit_keys_and_suggestions(self):
        _, client, page = self.start_off_screen()
        self.type_into(page, "#subject", "alpha beta")
        # At another place, because the previous click would count.
        self.point("mousemove_relative", 40, 0, "click", "--repeat", 3, "--delay", 50, 1)
        page.wait_for("getSelection().toString() === 'alpha beta'")
        self.point("key", "ctrl+c")
        self.click_on(page, "textarea")
        self.point("key", "ctrl+v")
        self.point("key", "XF86Paste")
        page.wait_for("document.querySelector('textarea').value === 'alpha betaalpha beta'")
        self.point("key", "Undo")
        page.wait_for("document.querySelector('textarea').value === 'alpha beta'")

        # A dead key goes through the input method; key events include caps lock.
        page.evaluate("addEventListener('keydown', event => "
                      "window.locked = (window.locked ?? '') + event.key + event.getModifierState('CapsLock'))")
        self.type_into(page, "#subject", "Caf")
        self.point("key", "dead_acute", "e")
        page.wait_for("document.querySelector('#subject').value.endsWith('Caf\u00e9')")
        self.point("key", "Caps_Lock", "b", "Caps_Lock")
        page.wait_for("document.querySelector('#subject').value.endsWith('Caf\u00e9B')")
        self.point("key", "c")
        page.wait_for("window.locked.endsWith('cfalse') && window.locked.includes('Btrue')")

        page.evaluate("""(() => {
          const list = document.createElement('datalist');
          list.id = 'words';
          list.append(Object.assign(document.createElement('option'), { value: 'gamma' }));
          document.body.append(list);
          document.querySelector('#subject').setAttribute('list', 'words'); })()""")
        self.click_on(page, "#subject")
        self.point("key", "ctrl+a")
        before = len(display.windows(self.environment, ""))
        self.point("type", "ga")
        wait_until(lambda: len(display.windows(self.environment, "")) > before, 30, "a suggestion")
        self.point("key", "Down", "Return")
        page.wait_for("document.querySelector('#subject').value === 'gamma'")
        self.assert_leaves_cleanly(client, page)

    def test_shows_the_page_again_after_its_process_was_killed(self):
        _, client, page = self.start_off_screen(probe=True)
        for child in process.descendants(client.process.pid):
            if b"--type=renderer" in process.command_line(child):
                os.kill(child, signal.SIGKILL)
        wait_until(lambda: not self.shows(310, 490, "#123456"), 30, "the end of the probe")
        page = self.send_page(client)
        page.wait_until_ready()
        self.type_into(page, "#subject", "again")
        page.wait_for("document.querySelector('#subject').value === 'again'")
        self.assert_leaves_cleanly(client, page)

    def test_follows_the_windows_size_and_asks_before_it_closes(self):
        _, client, page = self.start_off_screen(probe=True)
        display.xdotool(self.environment, "windowsize", self.window(), 1000, 700)
        page.wait_for("innerWidth === 1000 && innerHeight === 700")
        self.wait_for_color(310, 490, "#123456")
        display.close_window(self.environment, self.window())
        self.assertEqual(client.wait(60), 0)

    def window(self):
        return wait_until(lambda: display.windows(self.environment, "^Zantrio$"), 30, "the window")[0]

    def focus_window(self):
        display.xdotool(self.environment, "windowfocus", "--sync", self.window())

    def point(self, *arguments):
        return display.xdotool(self.environment, *arguments)

    def click_on(self, page, selector):
        """Clicks the element's centre; the window is at the screen's corner, without a frame."""
        x, y = page.evaluate(f"(r => [r.left + r.width / 2, r.top + r.height / 2])"
                             f"(document.querySelector('{selector}').getBoundingClientRect())")
        self.point("mousemove", round(x), round(y), "click", 1)

    def type_into(self, page, selector, text):
        self.click_on(page, selector)
        page.wait_for(f"document.activeElement?.matches('{selector}')")
        self.point("type", "--delay", 5, text)

    def wait_for_color(self, x, y, color):
        """Waits until the screen shows the colour at the point."""
        wait_until(lambda: self.shows(x, y, color), 30, f"{color} at {x},{y}")

    def shows(self, x, y, color):
        text = subprocess.run(
            ["import", "-window", "root", "-crop", f"1x1+{x}+{y}", "-depth", "8", "txt:-"],
            env=self.environment, check=True, capture_output=True, text=True).stdout
        return color.lower() in text.lower()


if __name__ == "__main__":
    unittest.main()
