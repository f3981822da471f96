"""Orders and positions, from wherever the hand is: dialog, panel, row and line on the chart."""

import chart_picture as paint
from acts.market import bid
from stage import SYMBOL


def order_dialog(stage):
    stage.desktop.key("F9")
    dialog = stage.titled("Order: ")
    stage.seen("order-dialog", dialog, f"F9 opened the order dialog: {dialog.name if dialog else ''}")
    return dialog


def trade_row(stage, accept):
    stage.open_tab("Trade")
    stage.cell_in_view("Trade", accept)
    return stage.row("Trade", accept)


def ticket_row(stage, ticket):
    return stage.row("Trade", lambda cells: cells[1].name == ticket)


def record(stage, ticket, kind="open"):
    """The platform's own record of a trade; None when it has none of this kind."""
    return next((trade for trade in stage.platform.trades(kind) if trade["id"].startswith(ticket)), None)


def buy(stage):
    """Buys with the order dialog and watches the position; its ticket."""
    dialog = order_dialog(stage)
    stage.seen("order-symbol", SYMBOL in dialog.name, "for the symbol of the chart")
    prices = stage.wait(lambda: dialog.find("label", f"Prices of {SYMBOL}"))
    quote = stage.wait(lambda: (now := prices.description).startswith("Bid ") and now)
    stage.seen("order-quote", quote, f"its quote is live: {quote}")
    stage.press_in(dialog, "Buy by Market")
    stage.seen("order-placed", stage.gone("Order: "), "the order was accepted and the dialog closed")
    stage.seen("order-journal", stage.wait(lambda: stage.journal_line("Order placed")), "the Journal says so")

    cells = trade_row(stage, lambda row: row[0].name == SYMBOL)
    stage.seen("position", cells, f"the position's row: {[cell.name for cell in cells] if cells else ''}")
    ticket, before = cells[1].name, cells[11].name
    profit = stage.wait(lambda: (now := ticket_row(stage, ticket)[11].name) != before and now, 60)
    stage.seen("profit", profit, f"its profit follows the feed: {before} became {profit}")
    stage.seen("summary", stage.label(lambda text: "Equity:" in text), "the account line stands under it")
    trades = [trade for trade in stage.platform.trades("open") if trade["symbol"] == SYMBOL]
    ours = len(trades) == 1 and trades[0]["type"] == "BUY" and trades[0]["id"].startswith(ticket)
    stage.seen("record", ours, f"the platform's own record agrees: {ticket}")
    return ticket


def buy_with_one_click(stage, symbol, lots):
    """Types a volume into the panel on the active chart and buys; the new position's row."""
    def held():
        return {trade["id"]: trade for trade in stage.platform.trades("open") if trade["symbol"] == symbol}

    before = held()
    panel = stage.has_chart(symbol)  # another chart lies behind it and has a panel, too
    volume = stage.wait(lambda: panel.find("spin button", "Volume in lots"))
    stage.tab_to(volume)
    stage.desktop.type(lots)
    stage.wait(lambda: volume.text() == lots)
    button = panel.find("push button", accept=lambda item: item.name.startswith("BUY"))
    stage.click(button)
    new = stage.wait(lambda: [trade for ticket, trade in held().items() if ticket not in before])
    stage.seen("one-click", len(new) == 1 and new[0]["type"] == "BUY" and float(new[0]["lotSize"]) == float(lots),
               f"one click bought {lots} {symbol}")
    executed = stage.wait(lambda: stage.journal_line(f"One-click BUY {symbol} executed"))
    stage.seen("one-click-journal", executed, f"the Journal says: {executed}")
    ticket = new[0]["id"][:8]
    stage.seen("one-click-row", trade_row(stage, lambda row: row[1].name == ticket), "its row is there")
    return ticket


def field_beside(stage, dialog, label):
    """The field of a form that stands right of this caption."""
    caption = stage.wait(lambda: dialog.find("label", label))
    return stage.wait(lambda: next(
        item for item in dialog.find_all(accept=lambda part: part.role in ("text", "spin button"))
        if abs(item.center[1] - caption.center[1]) < 8))


def modify_by_dialog(stage, ticket, below, above, by_menu=False):
    """Gives a position a stop loss and a take profit at these distances from the price."""
    price = bid(stage)
    stop_loss, take_profit = price - below, price + above
    row = trade_row(stage, lambda cells: cells[1].name == ticket)
    if by_menu:
        stage.context_menu(*row[0].center, "Down", "Down", "Return")
    else:
        stage.click(row[0], times=2)
    dialog = stage.titled("Modify Order")
    stage.seen("modify", dialog, f"{'Modify in the menu of the row' if by_menu else 'a double-click on the row'} "
               "opens the modify dialog")
    ready = stage.wait(lambda: field_beside(stage, dialog, "Stop Loss:").has("FOCUSED"))
    stage.seen("modify-ready", ready, "which takes a stop loss at once")
    stage.desktop.type(f"{stop_loss:.5f}".replace(".", ","))  # a comma counts as a point
    stage.desktop.key("Tab")
    stage.desktop.type(f"{take_profit:.5f}")
    stage.seen("modify-filled", True, f"{stop_loss:.5f} and {take_profit:.5f} are typed")
    stage.desktop.key("Return")
    stage.seen("modify-sent", stage.gone("Modify Order"), "Return sends them, and the dialog is gone")
    wanted = [f"{stop_loss:.5f}", f"{take_profit:.5f}"]
    shown = stage.wait(lambda: [cell.name for cell in ticket_row(stage, ticket)[6:8]] == wanted)
    stage.seen("modified", shown, f"the row shows {wanted}")
    kept = record(stage, ticket)
    stage.seen("modified-record", [kept["stopLoss"], kept["takeProfit"]] == wanted, "and so does the platform")


def kept_levels(stage):
    """Every level that the platform has for the chart's symbol, by ticket and name."""
    return {(trade["id"][:8], level): float(trade[level] or 0)
            for kind in ("open", "pending") for trade in stage.platform.trades(kind) if trade["symbol"] == SYMBOL
            for level in ("stopLoss", "takeProfit", "pendingPrice")}


def drag_level(stage, ticket, name, colour, kind, field, down):
    """Drags the lowest line of this colour, which must be the ticket's, down by some pixels and waits for the
    line and the record: of all levels on the chart, only this one changes."""
    chart = stage.chart()
    stage.desktop.move(5, 5)
    pointed = stage.wait(lambda: chart.lines(colour))
    stage.seen(f"{name}-line", pointed, "the chart shows the level as a line")
    before = kept_levels(stage)
    across, target = chart.at(0.55, 0)[0], pointed[-1] + down

    def line_at_target(share):
        return any(abs(line - target) <= 1 for line in chart.lines(colour, share))

    stage.desktop.drag((across, pointed[-1]), (across, target))
    held = stage.wait(lambda: line_at_target(0.2))  # the crosshair lies over it
    stage.seen(f"{name}-held", held, "while it is dragged, the line follows the hand")
    stage.desktop.drop()
    stage.desktop.move(5, 5)
    after = stage.wait(lambda: (now := kept_levels(stage)) != before and now) or before
    changed = {key: after.get(key) for key in before if after.get(key) != before[key]}
    moved = changed.get((ticket, field), 0)
    stage.seen(f"{name}-moved", list(changed) == [(ticket, field)] and 0 < moved < before[ticket, field],
               f"the platform moved it from {before[ticket, field]:.5f} to {moved:.5f}, and no other level")
    there = stage.wait(lambda: line_at_target(0.3))
    stage.seen(f"{name}-there", there, "and its line lies where it was dropped")
    said = stage.wait(lambda: stage.journal_line(f"{kind} moved to "))
    stage.seen(f"{name}-journal", said and abs(float(said.split()[-1]) - moved) < 1e-9, f"the Journal says: {said}")


def place_limit(stage):
    """Places a buy limit below the price; its ticket."""
    dialog = order_dialog(stage)
    stage.press_in(dialog, "Limit Order")
    price = bid(stage) - 0.0016
    stage.tab_to(field_beside(stage, dialog, "Price:"))
    stage.desktop.type(f"{price:.5f}")
    stage.press_in(dialog, "Buy Limit")
    stage.gone("Order: ")
    pending = stage.wait(lambda: stage.platform.trades("pending")) or []
    stage.seen("limit", len(pending) == 1 and pending[0]["pendingPrice"] == f"{price:.5f}", "a limit order waits")
    ticket = pending[0]["id"][:8]
    cells = trade_row(stage, lambda row: row[1].name == ticket)
    stage.seen("limit-row", cells and cells[3].name == "buy limit", "its row is there")
    return ticket


def cancel(stage, ticket):
    cells = trade_row(stage, lambda row: row[1].name == ticket)
    stage.context_menu(*cells[0].center, "Down", "Return")
    stage.seen("cancelled-order", stage.wait(lambda: not ticket_row(stage, ticket) and not record(stage, ticket, "pending")),
               "Cancel Order in the row's menu took it away, here and on the platform")
    stage.seen("cancelled-journal", stage.wait(lambda: stage.journal_line("Pending order cancelled")), "the Journal says so")


def close(stage, ticket):
    cells = trade_row(stage, lambda row: row[1].name == ticket)
    stage.context_menu(*cells[0].center, "Down", "Return")
    question = stage.titled("Close Position")
    stage.seen("close-question", question and question.find("label", accept=lambda item: f"(#{ticket})?" in item.text()),
               "Close Position in the row's menu asks first")
    stage.press_in(question, "Yes")
    stage.seen("closed-position", stage.wait(lambda: not ticket_row(stage, ticket) and not record(stage, ticket)),
               "it is closed, here and on the platform")
    stage.seen("closed-journal", stage.wait(lambda: stage.journal_line("Position closed")), "the Journal says so")


def set_up(stage):
    """A position with a stop loss and a take profit, and a limit order; their tickets."""
    ticket = buy(stage)
    modify_by_dialog(stage, ticket, 0.0010, 0.0014)
    drag_level(stage, ticket, "stop-loss", paint.STOP_LOSS, "SL", "stopLoss", 8)
    return ticket, place_limit(stage)


def clear_up(stage, ticket, order):
    """Ends all of that, and a one-click position on the way, which gets a stop loss below the other's; the
    tickets of what was closed."""
    drag_level(stage, order, "limit", paint.PENDING, "PRICE", "pendingPrice", 8)
    cancel(stage, order)
    second = buy_with_one_click(stage, SYMBOL, "0.10")
    modify_by_dialog(stage, second, 0.0016, 0.0019, by_menu=True)
    drag_level(stage, second, "one-click-stop-loss", paint.STOP_LOSS, "SL", "stopLoss", 8)
    close(stage, second)
    close(stage, ticket)
    return [ticket, second]
