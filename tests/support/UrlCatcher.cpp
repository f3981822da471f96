#include "support/UrlCatcher.h"

#include <QDesktopServices>

using namespace Qt::StringLiterals;

namespace {

constexpr auto caughtScheme = "file"_L1;

}

UrlCatcher::UrlCatcher()
{
    QDesktopServices::setUrlHandler(caughtScheme, this, "open");
}

UrlCatcher::~UrlCatcher()
{
    QDesktopServices::unsetUrlHandler(caughtScheme);
}
