// The common language of long work on the records.
//
// Queue: posted on the queue of the work; observers register for the queue that they need.
#pragma once

#include <string>

namespace tavrion::DataProcess {

/// User info: "progress", a float from 0 to 1, not a number where there is nothing to measure.
inline const std::string didUpdate = "DataProcessDidUpdate";
/// No user info.
inline const std::string didFinish = "DataProcessDidFinish";
inline const std::string progressKey = "progress";

void postUpdate(float progress);
void postFinish();

}  // namespace tavrion::DataProcess
