// The table of legend macros: the date macros a legend may hold, as text resources.
//
// Entry 0 holds the number of macros the interpreter reads, as decimal text ("14"). Entries 1 to
// 15 hold one macro each as "macro|description|example", the example followed by "\n" and a
// note on the reference date of the examples. The count is one short of the rows on purpose: the
// last macro ("&[FAño-1]") is listed for the formula editor but never expanded.
#pragma once

#include <string_view>

namespace kivmovfrec::resources {

// Number of entries of the table, entry 0 included.
inline constexpr int kLegendMacroEntries = 16;

// Entry i of the table; "" for i outside 0..15.
std::string_view LegendMacroEntry(int i);

}  // namespace kivmovfrec::resources
