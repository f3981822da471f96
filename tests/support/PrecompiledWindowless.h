#pragma once

// What most tests without windows pull in anyway.
#include <QtCore/QtCore>
#include <QtTest/QtTest>

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <utility>
#include <vector>
