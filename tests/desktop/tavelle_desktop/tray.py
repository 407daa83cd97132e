"""The one status item in the panel's tray, found and used as a person does: by what is on the screen."""

from gi.repository import GLib

from .waiting import TimedOut, wait_until

FIRST = 0.0  # the uppermost entry of a menu
MIDDLE = 0.5
LAST = 1.0


class Tray:
    def __init__(self, desktop):
        self._desktop = desktop
        self._menu = None

    def wait_for_item(self):
        wait_until(self._desktop.tray_items, "a status item in the tray", within=15)
        wait_until(self._item_place, "the status item on the screen")

    def open_menu(self, button=1):
        """Clicks the item and returns where the menu is. A click that the panel was not ready for is made again: the first one is
        better not the right button's, which would open a menu of the panel's own then."""
        self.wait_for_item()
        before = self._windows()

        def menu():
            new = ((window, place) for window, place in self._windows().items() if window not in before)
            return next(((window, place) for window, place in new if place.width > 60 and place.height > 60), None)

        def click():
            place = self._item_place()
            self._desktop.pointer.click(place.x + place.width / 2, place.y + place.height / 2, button)
            try:
                return wait_until(menu, "the menu", within=2.0)
            except TimedOut:
                return None

        self._menu, place = wait_until(click, "the status item's menu", within=10)
        return place

    def wait_for_closed_menu(self):
        """Other windows may have come meanwhile, as a tooltip does."""
        wait_until(lambda: self._menu not in self._windows(), "the menu is closed")

    def choose(self, entry):
        """Clicks an entry of the menu: FIRST, MIDDLE or LAST."""
        self._desktop.pointer.click(*self.point_at(entry))

    def point_at(self, entry):
        """Opens the menu, moves the pointer onto an entry and returns where that is."""
        place = self.open_menu()
        half_entry = place.height / 8  # three entries, two separators, the frame
        y = place.y + half_entry + entry * (place.height - 2 * half_entry)
        x = place.x + place.width / 2
        for step in (3, 0):  # an entry lights up when the pointer comes to it
            self._desktop.pointer.move(x - step, y)
        return int(x), int(y)

    def menu_labels(self):
        """The menu as the panel is told of it; None stands for a separator."""
        name, _, path = self._desktop.tray_items()[0].partition("/")
        menu = self._desktop.property(name, "/" + path, "org.kde.StatusNotifierItem", "Menu")
        _, (_, _, children) = self._desktop.call(name, menu, "com.canonical.dbusmenu", "GetLayout",
                                                 GLib.Variant("(iias)", (0, -1, [])))  # fmt: skip
        return [None if properties.get("type") == "separator" else properties["label"] for _, properties, _ in children]

    def _windows(self):
        return {window.id: place for window, place in self._desktop.screen.top_windows()}

    def _item_place(self):
        """The tray is the panel's only plug-in with a process of its own; with one item in it, its window is the item."""
        plugs = self._desktop.screen.find_windows(lambda names, _title: "Wrapper-2.0" in names)
        places = [self._desktop.screen.place(window) for window in plugs]
        return next((place for place in places if place.width >= 16), None)
