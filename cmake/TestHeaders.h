// What most tests include, for builds that precompile it. No file may count on it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <set>

#include "RoomHeaders.h"
