"""The History tab against the platform's own records, to the cent, read over its API and from its database."""

import sqlite3
from contextlib import closing


def cents(text):
    return round(float(text.replace(",", "")) * 100)


def compare_history(stage, name, account, tickets):
    """Every row of the tab, cell by cell; `tickets` must be among them. Returns what the tab shows."""
    stage.open_tab("History")
    records = stage.platform.get("/api/trades/history?accountId=" + account["id"])
    wanted = [[trade["symbol"], trade["id"][:8], f"{float(trade['lotSize']):.2f}", trade["entryPrice"],
               trade["exitPrice"], cents(trade["commission"]), cents(trade["swap"]), cents(trade["pnl"])]
              for trade in records if trade["exitPrice"]]

    def rows():
        return [[row[0], row[1], row[4], row[5], row[9], cents(row[10]), cents(row[11]), cents(row[12])]
                for row in stage.texts("History") if float(row[9])]

    same = stage.wait(lambda: rows() == wanted)
    stage.seen(f"history-{name}", same and set(tickets) <= {row[1] for row in wanted},
               f"the History tab of {name} and the platform's records agree in {len(wanted)} trades: {rows()}")
    total = sum(row[-1] for row in wanted)
    stage.seen(f"balance-{name}", cents(account["balance"]) - cents(account["initialBalance"]) == total,
               f"their sum of {total / 100:.2f} is what the balance has changed by")
    return {row[1]: tuple(row[5:]) for row in rows()}


def compare_database(stage, shown):
    """Ends the platform, which keeps its file to itself, and reads what is on the disk."""
    stage.platform.stop()
    with closing(sqlite3.connect(f"file:{stage.platform.database}?mode=ro", uri=True)) as database:
        stored = {row[0][:8]: row[1:] for row in database.execute(
            "SELECT id, commission, swap, pnl FROM trades WHERE status = 'CLOSED' AND exit_price > 0")}
    stage.seen("database", stored == shown, f"the database holds the same trades to the cent: {stored}")
