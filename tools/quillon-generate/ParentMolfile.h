#pragma once

#include <string>
#include <vector>

namespace quillon::generate {

// The lines of a two-dimensional MDL molfile (V2000) of the parent drug, drawn by this program
// on a hexagonal grid: the tricyclic ring system with its chlorine and the dimethylaminopropyl
// chain on the ring nitrogen. No line is empty or a lone brace, so the lines can be embedded in a
// report block as they are.
std::vector<std::string> ParentMolfileLines(const std::string& name);

} // namespace quillon::generate
