#pragma once

// What the rooms without windows pull in anyway.
#include <QtCore/QtCore>

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <utility>
#include <vector>
