#pragma once

// What nearly every test uses.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>
#include <algorithm>
#include <array>
#include <atomic>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/Files.h"
#include "tests/support/Testsupport.h"
