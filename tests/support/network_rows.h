// Small networks for tests of the analysis: tables of links told a row a line, branches and nets told as
// text.

#pragma once

#include <string>

/// Modules of the test project "NET" in slot 0, by number: 0 to 3 are exchangers (aisle 0 from port 0 to 1,
/// aisle 1 from port 2 to 3), the others up to 699 are pipes (aisle 0 from port 0 to 1).
inline constexpr int Exchangers = 4;
inline constexpr int NetModules = 700;

/// Makes the project and loads its snapshot.
void NetMake();

/// Fills the tables of the snapshot. A line is `[page] [type] END END`: END is `n2.8` for a node's port,
/// `m4.0` and `e4.0` for a through port and an end port of a module, `j1.0` for a jump; a line `-` is a
/// vacant row, `info 3` gives node 3 another kind. The nodes named by rows are in use, of kind FLUID.
void NetRows(const std::string& lines);

/// The branches traced last, `TYPE FRONT module/aisle ... POST` a line; the post end of an open one is `-`.
std::string BranchesText();
/// The matrices, a line each.
std::string NetsText();
