#include "faults/Fault.h"

namespace faults {

const QList<Moment>& allMoments()
{
    static const QList<Moment> all{Moment::Connecting, Moment::Headers, Moment::Body, Moment::Between};
    return all;
}

const QList<Fault>& allFaults()
{
    static const QList<Fault> all{Fault::Refused, Fault::Reset, Fault::Cut, Fault::BlackHole, Fault::Drip,
        Fault::Crumbs, Fault::TooLong, Fault::TooShort, Fault::Duplicate, Fault::OutOfOrder,
        Fault::ServerError, Fault::Html, Fault::Redirect, Fault::BrokenTls, Fault::GzipBomb};
    return all;
}

const char* nameOf(Moment moment)
{
    switch (moment) {
    case Moment::Connecting:
        return "connecting";
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
    switch (fault) {
    case Fault::Refused:
        return "refused";
    case Fault::Reset:
        return "reset";
    case Fault::Cut:
        return "cut";
    case Fault::BlackHole:
        return "black hole";
    case Fault::Drip:
        return "drip";
    case Fault::Crumbs:
        return "crumbs";
    case Fault::TooLong:
        return "length too long";
    case Fault::TooShort:
        return "length too short";
    case Fault::Duplicate:
        return "duplicate";
    case Fault::OutOfOrder:
        return "out of order";
    case Fault::ServerError:
        return "server error";
    case Fault::Html:
        return "web page";
    case Fault::Redirect:
        return "redirect";
    case Fault::BrokenTls:
        return "broken TLS";
    case Fault::GzipBomb:
        return "gzip bomb";
    }
    return "";
}

bool canMeet(Fault fault, Moment moment)
{
    switch (fault) {
    case Fault::Refused:
    case Fault::Reset:
    case Fault::Cut:
    case Fault::BlackHole:
    case Fault::BrokenTls:
        return true;
    case Fault::Drip:
    case Fault::Crumbs:
    case Fault::TooLong:
    case Fault::GzipBomb:
        return moment == Moment::Headers || moment == Moment::Body;
    case Fault::TooShort:
        return moment == Moment::Body;
    case Fault::Duplicate:
        return moment != Moment::Connecting;
    case Fault::OutOfOrder:
        return moment != Moment::Between;
    case Fault::ServerError:
        return moment != Moment::Body;
    case Fault::Html:
        return moment != Moment::Between;
    case Fault::Redirect:
        return moment == Moment::Connecting || moment == Moment::Headers;
    }
    return false;
}

bool feedCanMeet(Fault fault, Moment moment)
{
    switch (fault) {
    case Fault::Refused:
    case Fault::Reset:
    case Fault::Cut:
    case Fault::BlackHole:
    case Fault::BrokenTls:
        return true;
    case Fault::Drip:
    case Fault::Crumbs:
        return moment == Moment::Headers || moment == Moment::Body;
    case Fault::TooLong:
    case Fault::TooShort:
        return moment == Moment::Body;
    case Fault::Duplicate:
        return moment == Moment::Headers || moment == Moment::Between;
    case Fault::OutOfOrder:
        return moment == Moment::Between;
    case Fault::ServerError:
    case Fault::Html:
    case Fault::Redirect:
    case Fault::GzipBomb:
        return moment == Moment::Headers;
    }
    return false;
}

} // namespace faults
