#include "view/Matching.h"

#include <algorithm>
#include <iterator>
#include <map>

namespace tavelle::view {

Matches match(const std::vector<Identity>& previous, const std::vector<Identity>& next) {
  Matches matches(next.size());
  std::size_t same = 0;  // most often, all of them
  for (; same < previous.size() && same < next.size() && previous[same] == next[same]; ++same) matches[same] = same;

  std::multimap<Identity, std::size_t> left;
  for (std::size_t at = same; at < previous.size(); ++at) left.emplace(previous[at], at);
  for (std::size_t at = same; at < next.size(); ++at) {
    const auto found = left.lower_bound(next[at]);
    if (found == left.end() || found->first != next[at]) continue;
    matches[at] = found->second;
    left.erase(found);
  }
  return matches;
}

// The longest increasing subsequence.
std::vector<bool> staying(const Matches& matches) {
  std::vector<std::size_t> ends;                                   // of the best run of each length: where it ends
  std::vector<std::optional<std::size_t>> before(matches.size());  // in its run
  for (std::size_t at = 0; at < matches.size(); ++at) {
    if (!matches[at]) continue;
    const auto length = std::lower_bound(ends.begin(), ends.end(), at, [&](std::size_t one, std::size_t other) {
      return matches[one] < matches[other];
    });
    if (length != ends.begin()) before[at] = *std::prev(length);
    if (length == ends.end()) {
      ends.push_back(at);
    } else {
      *length = at;
    }
  }

  std::vector<bool> stays(matches.size(), false);
  if (ends.empty()) return stays;
  for (std::optional<std::size_t> at = ends.back(); at; at = before[*at]) stays[*at] = true;
  return stays;
}

}  // namespace tavelle::view
