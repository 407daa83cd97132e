"""The settings window as a person uses it: found by what a screen reader reads, changed by clicks and key presses."""

from gi.repository import GLib

from . import accessibility
from .waiting import wait_until

WINDOW_CLASS = "(?i)app.tavelle.Tavelle"
HEADER = 47  # the height of the header bar, below which the content is
RECORDING = "Press keys..."  # what the button of the hotkey shows meanwhile
PROVIDERS = ("Tavelle", "OpenAI", "Anthropic", "Gemini", "Ollama", "Custom")  # in their order
WHEEL_UP, WHEEL_DOWN = 4, 5


class SettingsWindow:
    def __init__(self, desktop, tavelle):
        self._desktop = desktop
        self._tavelle = tavelle
        self.window = None

    def open(self):
        self.ask_for()
        return self.wait_for()

    def ask_for(self):
        """Starts Tavelle once more, which opens the window of the one that runs."""
        self._desktop.processes.start("second-start", self._tavelle.program)

    def wait_for(self):
        self.window = self._desktop.screen.wait_for_window(WINDOW_CLASS)
        accessibility.join(self._desktop)
        self._until(lambda: self._frame().find("page tab", "General"), lambda: "the settings window can be read")
        self._desktop.screen.activate(self.window)
        return self

    def close(self):
        self._desktop.keyboard.chord("Control", "W")
        self.wait_for_closed()

    def close_by_its_button(self):
        self.press("Close")
        self.wait_for_closed()

    def wait_for_closed(self):
        wait_until(lambda: not self.is_open(), "the settings window is closed")

    def is_open(self):
        return self._desktop.screen.window_of_class(WINDOW_CLASS) is not None

    def renderer(self):
        """The process that draws it, or none."""
        return self._desktop.processes.find("tavelle-settings")

    @property
    def place(self):
        return self._desktop.screen.place(self.window)

    # What it shows.

    def element(self, role, name=None):
        return self._until(lambda: self._frame().find(role, name), lambda: f"a {role} {name!r}; shown are {self.shown()}")

    def shows(self, role, name):
        try:
            return self._frame().find(role, name) is not None
        except GLib.Error:
            return False  # it changed while it was read

    def wait_until_shown(self, role, name):
        self.element(role, name)
        return self

    def shown(self):
        return self._read(lambda: [(one.role, one.name) for one in self._frame().all()
                                   if one.name and one.role not in ("filler", "panel")])  # fmt: skip

    def text(self, name):
        return self._read(lambda: self.element("text", name).text)

    def place_of(self, role, name):
        return self._read(lambda: self.element(role, name).place)

    def wait_for_text(self, name, text):
        self._until(lambda: self.text(name) == text, lambda: f"{name!r} holds {text!r}; it holds {self.text(name)!r}")

    def wait_for_label(self, accept, what):
        return self._until(lambda: next((one.name for one in self._frame().all() if one.role == "label" and accept(one.name)), None),
                           lambda: f"{what}; shown are {self.shown()}")  # fmt: skip

    def wait_until_still(self, looks=2):
        """Nothing in it moves or fades any more: it is the same at so many looks, one after the other."""
        seen = []

        def is_still():
            seen.append(self._desktop.screen.pixels(self.window))
            return len(seen) >= looks and seen[-looks:] == [seen[-1]] * looks

        wait_until(is_still, "the settings window is still", every=0.3)

    def icons(self):
        return self._read(lambda: [one for one in self._frame().all() if one.role == "image" and one.place.width])

    def darkest(self, element):
        """Of the pixels that it is made of: 0 for black, 255 for white."""
        place, frame = element.place, self._frame_place()
        left = place.x + (self.place.width - frame.width) // 2
        top = place.y + (self.place.height - frame.height) // 2
        return self._desktop.screen.darkest(self.window, left, top, place.width, place.height)

    def picture(self, path):
        small = ["-strip", "-define", "png:compression-level=9", "-define", "png:compression-filter=0"]
        self._desktop.processes.run("import", "-display", self._desktop.display_name, "-window", self.window.id, *small, path,
                                    within=20)  # fmt: skip

    # What a person does.

    def focused(self):
        """The roles and names of what has the keyboard."""
        try:
            return [(one.role, one.name) for one in self._frame().all() if one.is_("focused")]
        except GLib.Error:
            return []  # it changed while it was read

    def content_place(self):
        """What is below the header bar."""
        def place():
            frame = self._frame().place
            return next((one.place for one in self._frame().all()
                         if one.role == "filler" and one.place.width == frame.width and one.place.y > 0), None)  # fmt: skip

        return self._until(place, lambda: f"the content has its place; the window's is {self._frame_place()}")

    def choose_tab(self, name):
        self.element("page tab", name).press()
        self._until(lambda: self.element("page tab", name).is_("selected"), lambda: f"the tab {name!r}")

    def press(self, name):
        self.element("push button", name).press()

    def click(self, role, name):
        element = self.element(role, name)
        self.scroll_to(element)
        place, frame = self._settled_place(element), self._frame_place()
        self._desktop.pointer.click(self._left(frame) + place.x + place.width / 3, self._top(frame) + self._middle(place))

    def type_into(self, name, text):
        """Puts another text into a field, key by key."""
        self.select_all(name)
        self._desktop.keyboard.type(text)
        self.wait_for_text(name, text)

    def select_all(self, name):
        """A field that takes the keyboard may put its cursor somewhere yet."""
        self.click("text", name)

        def is_selected():
            self._desktop.keyboard.chord("Control", "A")
            return self.element("text", name).is_all_selected

        self._until(is_selected, lambda: f"all of {name!r} is selected", every=0.1)

    def select_row(self, name):
        self.click("list item", name)
        self._until(lambda: self.element("list item", name).is_("selected"), lambda: f"the row {name!r} is selected")

    def record(self, title, *keys):
        """Presses the button of the hotkey, which shows this title, and then the keys."""
        self.press(title)
        self.wait_until_shown("push button", RECORDING)
        self._desktop.keyboard.chord(*keys)

    def choose_provider(self, name):
        """Opens the list of providers, goes down to this one, and takes it."""
        def is_open():
            return set(PROVIDERS) <= {name for role, name in self.shown() if role == "label"}

        self.click("combo box", "Provider:")
        self._until(is_open, lambda: f"the list of providers; shown are {self.shown()}")
        for key in ("Home", *["Down"] * PROVIDERS.index(name), "Return"):
            self._desktop.keyboard.chord(key)
        self._until(lambda: not is_open(), lambda: "the list of providers is closed")

    def scroll_to(self, element):
        """By the wheel, until the middle of it is in sight."""
        frame = self._frame_place()

        def is_in_sight():
            middle = self._middle(element.place)
            if HEADER + 10 < middle < frame.height - 10:
                return True
            self._turn_wheel(WHEEL_DOWN if middle > HEADER + 10 else WHEEL_UP)
            return False

        self._until(is_in_sight, lambda: f"{element.name!r} is in sight", every=0.1)

    def scroll_to_end(self):
        """To the temperature, and below it to where nothing follows."""
        slider = self.element("slider", "Temperature")
        self.scroll_to(slider)
        seen = []

        def is_at_end():
            self._turn_wheel(WHEEL_DOWN)
            seen.append(self._settled_place(slider).y)
            return len(seen) > 1 and seen[-1] == seen[-2]

        self._until(is_at_end, lambda: "the end of the tab", every=0.1)

    def _turn_wheel(self, wheel):
        frame = self._frame_place()
        self._desktop.pointer.click(self._left(frame) + 8, self._top(frame) + frame.height / 2, wheel)

    def _settled_place(self, element):
        """Where it is once the window has laid out what has changed before."""
        seen = []

        def is_settled():
            place = element.place
            seen.append((place.x, place.y, place.width, place.height))
            return place if seen[-2:] == [seen[-1]] * 2 and place.width else None

        return self._until(is_settled, lambda: f"{element.name!r} stays in its place", every=0.1)

    @staticmethod
    def _middle(place):
        return place.y + min(place.height, 40) / 2

    def _left(self, frame):
        """A border and a shadow of its own surround what the window tells of itself."""
        return self.place.x + (self.place.width - frame.width) / 2

    def _top(self, frame):
        return self.place.y + (self.place.height - frame.height) / 2

    def _frame_place(self):
        return self._read(lambda: self._frame().place)

    def _frame(self):
        for application in accessibility.applications():
            for window in application.children():  # no further: others have thousands of elements
                if (window.role, window.name) == ("frame", "Tavelle Settings"):
                    return window
        raise GLib.Error("there is no settings window")

    def _read(self, ask):
        """What is asked, be it nothing."""
        (answer,) = self._until(lambda: (ask(),), lambda: "the settings window can be read")
        return answer

    @staticmethod
    def _until(ask, what, every=0.01):
        def answer():
            try:
                return ask()
            except GLib.Error:
                return None  # it changed while it was read

        return wait_until(answer, what, within=15, every=every)
