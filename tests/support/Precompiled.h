#pragma once

// What nearly every test includes, read once for a whole program of them. No file may rely on it:
// the checks of the code compile each one without.

#include <gtest/gtest.h>
#include <tl/expected.hpp>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#if __has_include(<QUrl>)
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QObject>
#include <QString>
#include <QUrl>
#endif
