#pragma once

#include <QString>

#include <optional>

// A Windows game directory copied to Linux keeps its mixed-case names, while the
// program asks for them in whatever case it was told ("RF.EXE", "levelsm.vpp").
// Resolves `path` component by component: a component that exists as written is
// taken as it is, any other one is matched without regard to case among the entries
// of its folder (the first in name order when several match). A relative path is
// looked up from the process's current directory and stays relative. Returns nothing
// when some component has no match. Both "/" and "\" separate components.
std::optional<QString> FindPathNoCase(const QString& path);
