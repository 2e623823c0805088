// The commands of `vrad edit`, as they are written.
#pragma once

#include <optional>
#include <string>
#include <variant>

#include "foundation/time_typed.h"
#include "tools/vrad/tool_position.h"
#include "vrad/vrad_chunk.h"
#include "vrad/vrae_substream.h"

/// From mFrom, included, to mTo, excluded; without bounds all of a clip.
struct Edit_Range {
  std::optional<Tool_Position> mFrom, mTo;
};

struct Edit_Merge {
  std::string mFile;
  bool mIsAvoiding;  // overlaps and duplicates
};
struct Edit_EraseRange {
  Edit_Range mRange;
};
struct Edit_CopyRange {
  Edit_Range mRange;
  Time_TypedLength mOffset;
};
struct Edit_Nudge {
  EMidiNudgeMode mMode;
  Time_TypedLength mOffset;
  Edit_Range mRange;
};
struct Edit_EraseStream {
  Vrae_SubStream mStream;
  Edit_Range mRange;
};
struct Edit_Quantize {
  Time_TypedLength mOffset;
};
struct Edit_Undo {};
struct Edit_Redo {};

struct Edit_Command {
  std::string mText;  // as written
  std::variant<Edit_Merge, Edit_EraseRange, Edit_CopyRange, Edit_Nudge, Edit_EraseStream,
               Edit_Quantize, Edit_Undo, Edit_Redo>
      mEdit;
};

/// What can be written, a line for each command, for the help text.
char const * Edit_GetCommandHelp();

/// Words stand apart by blanks; double quotes hold one with blanks together.
/// Fails: Tool_UsageError that quotes the command.
Edit_Command Edit_Parse(std::string const & iText);
