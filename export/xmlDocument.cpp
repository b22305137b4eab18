#include "export/xmlDocument.h"

#include "base/text.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr char indent[] = "    ";
constexpr char placeName[] = "points";
// As pugixml prints it. No text of a document looks like it: there, "<" is escaped.
constexpr QByteArrayView placeMark = "<?points?>\n";

// Control characters other than tab and line feed. A carriage return is allowed, but readers turn
// it into a line feed, so it would not come back either.
bool isForbidden(char byte) {
  const auto code = static_cast<unsigned char>(byte);
  return code < 0x20 && byte != '\t' && byte != '\n';
}

// U+FFFE and U+FFFF, which UTF-8 writes as EF BF BE and EF BF BF.
void removeNoncharacters(QByteArray& bytes) {
  bytes.replace("\xEF\xBF\xBE", "").replace("\xEF\xBF\xBF", "");
}

qsizetype addSize(qsizetype sum, const QByteArray& bytes) {
  return sum + bytes.size();
}

class ByteArrayWriter : public pugi::xml_writer {
 public:
  explicit ByteArrayWriter(QByteArray& out) : out_(out) {}

  void write(const void* data, size_t size) override {
    out_.append(static_cast<const char*>(data), static_cast<qsizetype>(size));
  }

 private:
  QByteArray& out_;
};

}  // namespace

namespace xml {

void appendText(QByteArray& out, const QString& value) {
  const qsizetype start = out.size();
  text::appendShown(out, value);
  // Nearly every text is plain; one look at it is all it costs.
  const auto unusual = [](char byte) { return isForbidden(byte) || byte == '\xEF'; };
  if (std::none_of(out.cbegin() + start, out.cend(), unusual)) {
    return;
  }
  QByteArray tail = out.mid(start);
  tail.removeIf(isForbidden);
  removeNoncharacters(tail);
  out.truncate(start);
  out.append(tail);
}

pugi::xml_node addElement(pugi::xml_node parent, const char* name, const QByteArray& value) {
  pugi::xml_node content = parent.append_child(name).append_child(pugi::node_pcdata);
  setText(content, value);
  return content;
}

void addDeclaration(pugi::xml_document& document) {
  pugi::xml_node declaration = document.append_child(pugi::node_declaration);
  declaration.append_attribute("version") = "1.0";
  declaration.append_attribute("encoding") = "UTF-8";
}

void addPlace(pugi::xml_node parent) {
  parent.append_child(pugi::node_pi).set_name(placeName);
}

QByteArray print(const pugi::xml_document& document, const QByteArrayList& pieces) {
  QByteArray frame;
  ByteArrayWriter writer(frame);
  document.save(writer, indent, pugi::format_indent, pugi::encoding_utf8);

  QByteArray out;
  out.reserve(frame.size() + std::accumulate(pieces.begin(), pieces.end(), qsizetype{0}, addSize));
  qsizetype from = 0;
  for (const QByteArray& piece : pieces) {
    const qsizetype at = frame.indexOf(placeMark, from);
    const qsizetype lineStart = frame.lastIndexOf('\n', at) + 1;
    out.append(QByteArrayView(frame).sliced(from, lineStart - from)).append(piece);
    from = at + placeMark.size();
  }
  return out.append(QByteArrayView(frame).sliced(from));
}

void appendElement(QByteArray& out, pugi::xml_node element, unsigned depth) {
  ByteArrayWriter writer(out);
  element.print(writer, indent, pugi::format_indent, pugi::encoding_utf8, depth);
}

}  // namespace xml
