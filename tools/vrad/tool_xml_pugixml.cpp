#include <algorithm>
#include <sstream>
#include <string_view>

#include <pugixml.hpp>

#include "tools/vrad/tool_clips.h"
#include "tools/vrad/tool_names.h"
#include "tools/vrad/tool_xml.h"

namespace {

constexpr char kIndent[] = "  ";

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

bool HasGrandchildren(Cmn_XMLNode const & iNode) {
  for (int i = 0; i < iNode.GetNumChildren(); ++i) {
    if (iNode.GetChild(i)->GetNumChildren() > 0) return true;
  }
  return false;
}

// The tag that begins an element, of one that has nothing in it.
std::string OpeningTag(pugi::xml_node iElement) {
  std::ostringstream text;
  iElement.print(text, "", pugi::format_raw, pugi::encoding_utf8);
  std::string tag = text.str();
  tag.erase(tag.find_last_not_of(" />") + 1);
  return tag + ">";
}

std::string IndentOf(unsigned iDepth) {
  std::string indent;
  for (; iDepth > 0; --iDepth)
    indent += kIndent;
  return indent;
}

}  // namespace

Tool_XMLWriter::Tool_XMLWriter(Host_MidiFile const & iFile, Tool_Output & ioOut,
                               Tool_ClipProgress & ioProgress)
    : mFile(iFile), mOut(ioOut), mProgress(ioProgress) {
  mOut.Print("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<vrad>\n");
}

void Tool_XMLWriter::WriteClip(int iClip) {
  Host_Clip const & clip = mFile.mClips[static_cast<size_t>(iClip)];
  pugi::xml_document document;
  pugi::xml_node element = document.append_child("clip");
  element.append_attribute("number") = iClip;
  element.append_attribute("track") = clip.mTrack;
  if (clip.mChannel >= 0) element.append_attribute("channel") = clip.mChannel;
  std::string const name = Tool_EscapeForXML(mFile.mTracks[static_cast<size_t>(clip.mTrack)].mName);
  if (!name.empty()) element.append_attribute("name") = name.c_str();
  mOut.Print("{}{}\n", kIndent, OpeningTag(element));
  mNumNotes = Tool_CountNotes(mFile, iClip);
  mNumNodes = 0;
  mProgress.Show(0, 2);
  WriteNode(*clip.mChunk->GetAsXML(), 2);
  mOut.Print("{}</clip>\n", kIndent);
}

// A document of its own for each node of some leaves, since a large one takes many times the memory
// of its text.
void Tool_XMLWriter::WriteNode(Cmn_XMLNode const & iNode, unsigned iDepth) {
  if (iNode.GetValue().empty() && HasGrandchildren(iNode)) {
    mOut.Print("{}<{}>\n", IndentOf(iDepth), iNode.GetName());
    for (int i = 0; i < iNode.GetNumChildren(); ++i)
      WriteNode(*iNode.GetChild(i), iDepth + 1);
    mOut.Print("{}</{}>\n", IndentOf(iDepth), iNode.GetName());
    return;
  }
  pugi::xml_document document;
  Append(document, iNode);
  OutputWriter writer(mOut);
  document.first_child().print(writer, kIndent, pugi::format_indent, pugi::encoding_utf8, iDepth);
  CountNode();
}

// The tree takes about as long to make as to print; most nodes are notes.
void Tool_XMLWriter::CountNode() {
  ++mNumNodes;
  if (mNumNodes % 1024 == 0)
    mProgress.Show(mNumNotes + std::min(mNumNodes, mNumNotes), 2 * mNumNotes);
}

void Tool_XMLWriter::Finish() {
  mOut.Print("</vrad>\n");
}
