// Dump trees as XML text.
#pragma once

#include <string>

#include "cmn/cmn_xmlnode.h"
#include "host/host_midifile.h"
#include "tools/vrad/tool_clipprogress.h"
#include "tools/vrad/tool_output.h"

/// Writes a document: an element "vrad" with an element for each clip, which holds the clip's own
/// tree. What is no XML character in a track's name stands as in "\xe9".
class Tool_XMLWriter {
public:
  /// Begins the document. All must outlive it.
  /// Fails: Tool_UsageError in a program that was built without XML.
  Tool_XMLWriter(Host_MidiFile const & iFile, Tool_Output & ioOut, Tool_ClipProgress & ioProgress);

  /// The progress must be at this clip.
  void WriteClip(int iClip);

  /// Ends the document.
  void Finish();

private:
  void WriteNode(Cmn_XMLNode const & iNode, unsigned iDepth);
  void CountNode();

  Host_MidiFile const & mFile;
  Tool_Output & mOut;
  Tool_ClipProgress & mProgress;
  size_t mNumNotes = 0;  // of the clip
  size_t mNumNodes = 0;  // of the clip that were written, each with all in it
};
