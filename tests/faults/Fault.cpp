#include "faults/Fault.h"

#include <algorithm>

namespace faults {

namespace {

/// A fault, and when a request and the feed can meet it.
struct Row {
    Fault fault;
    const char* name;
    QList<Moment> ofRequests;
    QList<Moment> ofTheFeed;
};

const QList<Row>& table()
{
    using enum Moment;
    static const QList<Row> rows{
        {Fault::Refused, "refused", allMoments(), allMoments()},
        {Fault::Reset, "reset", allMoments(), allMoments()},
        {Fault::Cut, "cut", allMoments(), allMoments()},
        {Fault::BlackHole, "black hole", allMoments(), allMoments()},
        {Fault::Drip, "drip", {Sending, Headers, Body, Between}, {Sending, Headers, Body}},
        {Fault::Crumbs, "crumbs", {Sending, Headers, Body, Between}, {Sending, Headers, Body}},
        {Fault::TooLong, "length too long", {Headers, Body, Between}, {Body}},
        {Fault::TooShort, "length too short", {Headers, Body, Between}, {Body}},
        {Fault::Duplicate, "duplicate", {Connecting, Headers, Body, Between}, {Headers, Between}},
        {Fault::OutOfOrder, "out of order", {Connecting, Headers, Body, Between}, {Between}},
        {Fault::ServerError, "server error", allMoments(), {Connecting, Headers, Between}},
        {Fault::Html, "web page", {Connecting, Headers, Body, Between}, {Connecting, Headers}},
        {Fault::Redirect, "redirect", {Connecting, Headers, Between}, {Connecting, Headers}},
        {Fault::BrokenTls, "broken TLS", allMoments(), {Connecting, Sending, Headers}},
        {Fault::GzipBomb, "gzip bomb", {Headers, Body, Between}, {Headers}},
    };
    return rows;
}

const Row& rowOf(Fault fault)
{
    return *std::ranges::find(table(), fault, &Row::fault);
}

} // namespace

const QList<Moment>& allMoments()
{
    static const QList<Moment> all{
        Moment::Connecting, Moment::Sending, Moment::Headers, Moment::Body, Moment::Between};
    return all;
}

const QList<Fault>& allFaults()
{
    static const QList<Fault> all = [] {
        QList<Fault> faults;
        for (const Row& row : table())
            faults.append(row.fault);
        return faults;
    }();
    return all;
}

const char* nameOf(Moment moment)
{
    switch (moment) {
    case Moment::Connecting:
        return "connecting";
    case Moment::Sending:
        return "sending";
    case Moment::Headers:
        return "headers";
    case Moment::Body:
        return "body";
    case Moment::Between:
        return "between";
    }
    return "";
}

const char* nameOf(Fault fault)
{
    return rowOf(fault).name;
}

bool isOfTheFeed(const std::string& request)
{
    return request.starts_with("GET /ws/");
}

bool canMeet(Fault fault, Moment moment)
{
    return rowOf(fault).ofRequests.contains(moment);
}

bool feedCanMeet(Fault fault, Moment moment)
{
    return rowOf(fault).ofTheFeed.contains(moment);
}

} // namespace faults
