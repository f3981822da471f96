#!/usr/bin/python3
"""The main job, end to end: the real terminal and the real practice platform on a virtual desktop.

Every step acts with the mouse or the keyboard, waits until its outcome is seen (in the window, as a
screen reader sees it, or in its pixels, or in the platform's own records), prints a line and keeps a
screenshot. The exit code is 0 only when every outcome was seen.
"""

import argparse
import shutil
import sys
import tempfile
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))

from acts import challenge, charting, experts, keyboard, lab, market, reading, records, returning, sign_in, trading, tray, warnings  # noqa: E402
from desktop import Desktop  # noqa: E402
from played_market import FALLING, write_market  # noqa: E402
from stage import Stage, StepFailed  # noqa: E402


def look_around(stage):
    market.toggle_docks(stage)
    market.pop_prices_up(stage)
    market.show_depth(stage)
    market.show_specification(stage)
    market.show_about(stage)


def chart(stage):
    charting.draw_the_five_objects(stage)
    charting.delete_an_object(stage)
    charting.change_the_type(stage)
    charting.change_the_timeframe(stage)
    charting.point_and_measure(stage)
    charting.add_indicators(stage)
    charting.show_data_window(stage)


def dress(stage):
    """Themes and colours, with a portrait of each. What the light theme, which stays on, looks like."""
    stage.open_tab("Trade")
    stage.portrait("terminal-dark.png")
    light = charting.switch_theme(stage, "Light")
    stage.portrait("terminal-light.png")
    charting.choose_preset(stage, "Black/White", (0xFF, 0xFF, 0xFF))
    charting.choose_preset(stage, "Qlon Green/Black", (0, 0, 0))
    charting.choose_background(stage)
    return light


def take(stage):
    sign_in.mistype_the_password(stage)
    sign_in.sign_in(stage, "start")
    warnings.see_the_news_warning(stage)
    market.watch_prices(stage)
    market.make_room(stage)
    market.open_chart(stage)
    plan = experts.let_loose(stage)
    look_around(stage)
    chart(stage)
    first, order = trading.set_up(stage)
    reading.read_the_chart(stage, first, order)
    light = dress(stage)
    alerts = warnings.set_an_alert(stage)
    plan, closed = experts.see_them_trade(stage, plan)
    returning.lose_the_platform(stage, first)
    lab.follow_the_experts(stage, plan)
    returning.restart(stage, first, light)
    warnings.find_the_alert(stage, alerts)
    closed += trading.clear_up(stage, first, order)
    shown = records.compare_history(stage, "demo", stage.platform.demo_account(), closed)
    lost = challenge.fail_the_challenge(stage)
    failed = stage.platform.account(lambda account: account["status"] == "FAILED")
    shown |= records.compare_history(stage, "challenge", failed, [lost])
    charting.arrange_charts(stage, FALLING)
    tray.use_the_tray(stage)
    records.compare_database(stage, shown)
    stage.platform.start()
    keyboard.trade(stage)


def perform(take, description, long=True):
    """Plays `take` on a new stage; the exit code. A `long` one lasts until the feed has pinged."""
    arguments = argparse.ArgumentParser(description=description)
    arguments.add_argument("--bin", type=Path, required=True, help="folder of the two programs")
    arguments.add_argument("--out", type=Path, required=True, help="folder for the screenshots")
    arguments.add_argument("--screen", default="1440x900", help="size of the desktop in points")
    arguments.add_argument("--scale", type=float, default=1, help="pixels for each point")
    options = arguments.parse_args()
    shutil.rmtree(options.out, ignore_errors=True)
    options.out.mkdir(parents=True)
    profile = Path(tempfile.mkdtemp(prefix="tavoran-tour-"))
    started = time.monotonic()
    width, height = (round(int(side) * options.scale) for side in options.screen.split("x"))
    desktop = Desktop(width, height, options.scale)
    stage = Stage(desktop, options.bin.resolve(), options.out, profile, write_market(profile / "replay"))
    try:
        take(stage)
    except StepFailed as failure:
        print(f"The tour ended early: {failure}", file=sys.stderr)
        print(f"What the programs wrote is in {profile}", file=sys.stderr)
        return 1
    finally:
        stage.close()
    offences = stage.platform.offences(long)
    for offence in offences:
        print(f"FAIL      the wire is described otherwise: {offence}", file=sys.stderr)
    if offences:
        return 1
    shutil.rmtree(profile)
    print(f"Every step was seen in {time.monotonic() - started:.0f} s; the screenshots are in {options.out}")
    return 0


if __name__ == "__main__":
    sys.exit(perform(take, __doc__))
