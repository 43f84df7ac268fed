// The made rows as text files, for a peer that is a program of its own.
//
// Queue: one thread. Fields are parted by tabs, numbers keep all their digits.
#pragma once

#include <string>

namespace tavrion::bench {

/// Writes songs.tsv, plays.tsv, range.tsv (the ends of the span, which are outside of it) and
/// ranking.tsv: what Tavrion makes of them, which the peer has to find too.
void writeRows(const std::string& directory);

}  // namespace tavrion::bench
