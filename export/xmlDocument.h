#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>

#include <pugixml.hpp>

/// What the writers of XML files have in common.
namespace xml {

/// Appends `value` as UTF-8, absent texts as "(null)". Characters that XML 1.0 cannot hold at all,
/// not even escaped, are left out; markup characters stay, pugixml escapes them when it prints.
void appendText(QByteArray& out, const QString& value);

/// Sets the text of a text node or attribute.
template <typename Handle>
void setText(Handle handle, const QByteArray& value) {
  handle.set_value(value.constData(), static_cast<size_t>(value.size()));
}

/// Adds the element `name` as the last child of `parent` and answers its text node, which holds
/// `value`.
pugi::xml_node addElement(pugi::xml_node parent, const char* name, const QByteArray& value = {});

/// Starts a document with its declaration: version 1.0, encoding UTF-8.
void addDeclaration(pugi::xml_document& document);

/// Marks a place among the children of `parent` that print() fills.
///
/// The points of a track are far too many to stand in the tree: 100,000 of them would take 200 MB.
/// They are printed one after another from a single element instead.
void addPlace(pugi::xml_node parent);

/// The document's bytes, indented, with `pieces` in its places, in document order. A piece is made
/// with appendElement(); there is one for every place.
QByteArray print(const pugi::xml_document& document, const QByteArrayList& pieces);

/// Appends an element as print() would have printed it at `depth`, where the root is at 0.
void appendElement(QByteArray& out, pugi::xml_node element, unsigned depth);

}  // namespace xml
