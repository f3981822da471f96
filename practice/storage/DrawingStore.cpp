#include "practice/storage/DrawingStore.h"

#include "practice/storage/Database.h"

namespace practice {

namespace {

Drawing readDrawing(const Statement& row)
{
    return {row.text(0), row.text(1), row.text(2), row.text(3), row.text(4), row.text(5)};
}

} // namespace

DrawingStore::DrawingStore(Database& database)
    : m_database(database)
{
}

std::vector<Drawing> DrawingStore::list(
    std::string_view userId, std::string_view symbol, std::string_view accountId)
{
    std::vector<Drawing> drawings;
    Statement& query
        = m_database.statement("SELECT id, account_id, symbol, tool, color, points FROM drawings"
                               " WHERE user_id = ?1 AND symbol = ?2 AND account_id = ?3 ORDER BY number");
    query.bind(1, userId).bind(2, symbol).bind(3, accountId);
    while (query.step())
        drawings.push_back(readDrawing(query));
    return drawings;
}

std::optional<Drawing> DrawingStore::find(std::string_view userId, std::string_view id)
{
    std::optional<Drawing> found;
    Statement& query = m_database.statement("SELECT id, account_id, symbol, tool, color, points FROM drawings"
                                            " WHERE user_id = ?1 AND id = ?2");
    query.bind(1, userId).bind(2, id);
    while (query.step())
        found = readDrawing(query);
    return found;
}

void DrawingStore::add(std::string_view userId, const Drawing& drawing)
{
    m_database
        .statement("INSERT INTO drawings(id, user_id, account_id, symbol, tool, color, points)"
                   " VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7)")
        .bind(1, drawing.id)
        .bind(2, userId)
        .bind(3, drawing.accountId)
        .bind(4, drawing.symbol)
        .bind(5, drawing.tool)
        .bind(6, drawing.color)
        .bind(7, drawing.points)
        .run();
}

void DrawingStore::update(std::string_view userId, const Drawing& drawing)
{
    m_database.statement("UPDATE drawings SET color = ?3, points = ?4 WHERE user_id = ?1 AND id = ?2")
        .bind(1, userId)
        .bind(2, drawing.id)
        .bind(3, drawing.color)
        .bind(4, drawing.points)
        .run();
}

bool DrawingStore::remove(std::string_view userId, std::string_view id)
{
    Statement& statement
        = m_database.statement("DELETE FROM drawings WHERE user_id = ?1 AND id = ?2 RETURNING id");
    statement.bind(1, userId).bind(2, id);
    bool removed = false;
    while (statement.step())
        removed = true;
    return removed;
}

} // namespace practice
