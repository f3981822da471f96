"""News and price alerts: what calls the trader who looks elsewhere."""

from acts.market import bid
from acts.trading import field_beside
from played_market import FALLING
from stage import StepFailed


def balloon(stage, title, accept, seconds=30):
    """A balloon at the tray whose title starts like this and whose text `accept` likes; the text."""
    def label_in(window, liked):
        return window.find("label", accept=lambda item: liked(item.text()))

    def probe():
        window = stage.window_now(lambda item: label_in(item, lambda text: text.startswith(title)))
        return window and label_in(window, lambda text: not text.startswith(title) and accept(text))

    found = stage.wait(probe, seconds)
    if not found:
        return None
    picture = stage.desktop.pixels(found.x, found.y, found.width, found.height)
    if not any(max(picture[at:at + 3]) < 0x60 for at in range(0, len(picture), 3)):
        raise StepFailed(f"the text of the balloon {title} is not dark enough to be read on its light ground")
    return found.text()


def see_the_news_warning(stage):
    """A high-impact event is never more than a quarter of an hour away, which is when the warning comes."""
    warning = balloon(stage, "Upcoming News — ", lambda text: text.endswith(" minutes"))
    stage.seen("news-warning", warning, f"a balloon warns of a high-impact event: {warning}")
    stage.open_tab("Calendar")
    title = warning.rsplit(" in ", 1)[0]
    row = stage.wait(lambda: stage.row("Calendar", lambda cells: cells[2].name == "HIGH" and cells[3].name == title))
    stage.seen("calendar", row, f"which stands in the calendar: {[cell.name for cell in row] if row else ''}")


def set_an_alert(stage):
    """Sets an alert a little below a falling price and waits until it fires. What the list shows then."""
    stage.open_tab("Alerts")
    stage.click(stage.wait(lambda: stage.part("push button", "Add Alert")))
    dialog = stage.titled("New Alert")
    stage.seen("alert-dialog", dialog, "Add Alert opens its dialog")
    stage.wait(lambda: dialog.find("combo box").has("FOCUSED"))
    stage.desktop.type(FALLING)
    stage.desktop.key("Tab", "End")
    stage.tab_to(field_beside(stage, dialog, "Price:"))
    price = bid(stage, FALLING) - 0.0012
    stage.desktop.type(f"{price:.5f}")
    stage.desktop.key("Return")
    alert = stage.wait(lambda: (shown := stage.texts("Alerts")) and shown[0][:3] == [FALLING, "Bid ≤", f"{price:.5f}"]
                       and shown)
    stage.seen("alert", alert and len(alert) == 1, f"an alert is set: {alert}")
    told = balloon(stage, f"Price Alert — {FALLING}", lambda text: text.startswith(f"{FALLING} ≤ {price:.5f} (now "), 60)
    stage.seen("alert-fired", told, f"it fires, and a balloon says so: {told}")
    fired = stage.wait(lambda: stage.texts("Alerts") == [[FALLING, "Bid ≤", f"{price:.5f}", "Triggered"]])
    stage.seen("alert-triggered", fired, "the list shows it as triggered")
    return stage.texts("Alerts")


def find_the_alert(stage, alerts):
    """After a new start of the terminal."""
    stage.open_tab("Alerts")
    found = stage.wait(lambda: stage.texts("Alerts") == alerts)
    stage.seen("alert-kept", found, f"the list of alerts is as it was: {stage.texts('Alerts')}")
