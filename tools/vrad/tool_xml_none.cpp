// Where pugixml was not found: says so.
#include "tools/vrad/tool_error.h"
#include "tools/vrad/tool_xml.h"

Tool_XMLWriter::Tool_XMLWriter(Host_MidiFile const & iFile, Tool_Output & ioOut,
                               Tool_ClipProgress & ioProgress)
    : mFile(iFile), mOut(ioOut), mProgress(ioProgress) {
  throw Tool_UsageError("--as xml: this program was built without XML: pugixml was not found");
}

void Tool_XMLWriter::WriteClip(int) {}
void Tool_XMLWriter::Finish() {}
