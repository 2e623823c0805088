#include <string_view>

#include <pugixml.hpp>

#include "tools/vrad/tool_names.h"
#include "tools/vrad/tool_xml.h"

namespace {

class OutputWriter : public pugi::xml_writer {
public:
  explicit OutputWriter(Tool_Output & ioOut) : mOut(ioOut) {}
  void write(void const * iData, size_t iNumBytes) override {
    mOut.Print("{}", std::string_view(static_cast<char const *>(iData), iNumBytes));
  }

private:
  Tool_Output & mOut;
};

void Append(pugi::xml_node ioParent, Cmn_XMLNode const & iNode) {
  pugi::xml_node element = ioParent.append_child(iNode.GetName().c_str());
  if (!iNode.GetValue().empty()) element.text().set(iNode.GetValue().c_str());
  for (int i = 0; i < iNode.GetNumChildren(); ++i)
    Append(element, *iNode.GetChild(i));
}

}  // namespace

Tool_XMLWriter::Tool_XMLWriter(Host_MidiFile const & iFile, Tool_Output & ioOut)
    : mFile(iFile), mOut(ioOut) {
  mOut.Print("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<vrad>\n");
}

// A document of its own for each clip, since a tree takes many times the memory of its text.
void Tool_XMLWriter::WriteClip(int iClip) {
  Host_Clip const & clip = mFile.mClips[static_cast<size_t>(iClip)];
  pugi::xml_document document;
  pugi::xml_node element = document.append_child("clip");
  element.append_attribute("number") = iClip;
  element.append_attribute("track") = clip.mTrack;
  if (clip.mChannel >= 0) element.append_attribute("channel") = clip.mChannel;
  std::string const name = Tool_EscapeForXML(mFile.mTracks[static_cast<size_t>(clip.mTrack)].mName);
  if (!name.empty()) element.append_attribute("name") = name.c_str();
  Append(element, *clip.mChunk->GetAsXML());
  OutputWriter writer(mOut);
  element.print(writer, "  ", pugi::format_indent, pugi::encoding_utf8, 1);
}

void Tool_XMLWriter::Finish() {
  mOut.Print("</vrad>\n");
}
