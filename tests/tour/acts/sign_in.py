"""Signing in, wrongly and rightly."""

from programs import EMAIL, PASSWORD


def dialog(stage):
    return stage.window(lambda item: item.find("push button", "Login"))


def mistype_the_password(stage):
    stage.terminal.start()
    stage.seen("first-dialog", dialog(stage), "the sign-in dialog is up for the first time")
    stage.desktop.type("practise")
    stage.desktop.key("Return")
    refused = stage.wait(lambda: dialog(stage).find("notification", accept=lambda item: "password" in item.name))
    stage.seen("refused", refused, f"a wrong password is refused: {refused.name if refused else ''}")
    stage.desktop.key("Escape")
    stage.seen("cancelled", stage.terminal.exit_code() == 0, "Escape ends the terminal, exit code 0")


def sign_in(stage, name):
    stage.terminal.start()
    up = dialog(stage)
    stage.seen(f"{name}-dialog", up, "the sign-in dialog is up")
    stage.seen(f"{name}-email", up.find("text", accept=lambda item: EMAIL in item.text()),
               "the e-mail address is filled in")
    stage.desktop.type(PASSWORD)
    stage.desktop.key("Return")
    stage.seen(f"{name}-window", stage.main_window(), "signed in; the main window is up")
