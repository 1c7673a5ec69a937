#include "zelk/configuration/impl/ValueFileWriterImpl.h"

#include <boost/shared_ptr.hpp>
#include <map>
#include <set>
#include <vector>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/GroupItemCollection.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/ValueIterator.h"
#include "zelk/configuration/impl/XmlFileLoader.h"
#include "zelk/host/XmlTokenReader.h"
#include "zelk/util/UtfUtil.h"

namespace zelk::configuration::impl {

namespace {

const char* const INDENT = "  ";
// The most bytes of one text that the value file reader takes.
const std::size_t MAX_TEXT_BYTES = XmlFileLoader::BUFFER_SIZE - 1;

bool isNameStart(unsigned char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':' || c >= 0x80;
}

bool isNameChar(unsigned char c) {
  return isNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

// Ids become element and attribute names as they are; one that XML cannot carry as a name (or
// that the reader would cut) makes a file that does not read back.
const char* checkedName(const char* id) {
  const std::string name(id != nullptr ? id : "");
  bool valid = !name.empty() && name.size() <= MAX_TEXT_BYTES &&
               isNameStart(static_cast<unsigned char>(name[0]));
  for (std::size_t i = 1; valid && i < name.size(); ++i) {
    valid = isNameChar(static_cast<unsigned char>(name[i]));
  }
  if (!valid) {
    throw ConfigurationException("The id \"%s\" cannot be written as an XML name", name.c_str());
  }
  return id;
}

// The length of the UTF-8 sequence at text[i] and its code point; 0 when it is not valid UTF-8
// (overlong forms, surrogates and code points above U+10FFFF included, which the decoder leaves to
// its callers).
std::size_t decodeUtf8(const std::string& text, std::size_t i, unsigned int& cp) {
  const int length = zelk::UtfUtil::getUtf8CodePoint(text.c_str() + i, cp);
  if (length <= 0) return 0;
  const unsigned int minimum = length == 1 ? 0 : length == 2 ? 0x80 : length == 3 ? 0x800 : 0x10000;
  if (cp < minimum || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return 0;
  return static_cast<std::size_t>(length);
}

// The items of one group sorted by the specification item they are bound to, read in one pass.
struct BoundItems {
  std::map<const ParameterRef*, std::vector<const ValueBase*>> values;
  std::map<const Container*, std::vector<const ValueGroup*>> groups;
  std::vector<boost::shared_ptr<ValueGroupItem>> held;  // every item, kept alive while writing
};

class Composer {
public:
  explicit Composer(const Specification& specification) : mSpecification(specification) {}

  std::string compose(const ValueGroup& values) {
    const Container* root = mSpecification.getItemsContainer();
    if (values.isNull() || values.getContainer() != root) {
      throw ConfigurationException(
          "The values do not belong to the \"%s\" specification: their group is bound to %s",
          mSpecification.getId(),
          values.isNull() || values.getContainer() == nullptr
              ? "no container"
              : ("\"" + std::string(values.getContainer()->getId()) + "\"").c_str());
    }
    std::string out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    writeGroup(values, *root, 0, out);
    return out;
  }

private:
  // Appends group, the values of container, to out.
  void writeGroup(const ValueGroup& group, const Container& container, std::size_t depth,
                  std::string& out) {
    BoundItems items;
    for (std::size_t i = 0; i < group.getItemCount(); ++i) {
      items.held.push_back(group.getItem(i));
      const ValueGroupItem* item = items.held.back().get();
      if (item->isValueGroup()) {
        const auto* child = static_cast<const ValueGroup*>(item);
        items.groups[child->getContainer()].push_back(child);
      } else if (const auto* value = dynamic_cast<const ValueBase*>(item)) {
        items.values[value->getParameterRef()].push_back(value);
      }
    }
    std::string attributes;
    std::string elements;
    std::set<const ValueGroupItem*> written;
    collect(container, container, items, depth, attributes, elements, written);
    for (const boost::shared_ptr<ValueGroupItem>& item : items.held) {
      if (written.count(item.get()) == 0) {
        throw ConfigurationException(
            "The value tree does not fit the \"%s\" specification: \"%s\" is not an item of "
            "\"%s\"",
            mSpecification.getId(), item->getName(), container.getId());
      }
    }
    const std::string indent = indentOf(depth);
    out += indent + "<" + checkedName(container.getId()) + attributes;
    if (elements.empty()) {
      out += "/>\n";
    } else {
      out += ">\n" + elements + indent + "</" + container.getId() + ">\n";
    }
  }

  // Writes the items that collection places (logical groups and one-ofs only arrange theirs), in
  // specification order: one-value parameters into attributes, the rest into elements.
  void collect(const GroupItemCollection& collection, const Container& container, BoundItems& items,
               std::size_t depth, std::string& attributes, std::string& elements,
               std::set<const ValueGroupItem*>& written) {
    for (std::size_t i = 0; i < collection.getNumberOfItems(); ++i) {
      const GroupItem* item = collection.getItem(i);
      if (item->getItemType() == GroupItem::PARAMETER_REF) {
        const auto* reference = static_cast<const ParameterRef*>(item);
        const auto found = items.values.find(reference);
        if (found == items.values.end()) continue;
        for (const ValueBase* value : found->second) {
          writeValue(*value, *reference, depth, attributes, elements);
          written.insert(value);
        }
      } else if (item->getItemType() == GroupItem::CONTAINER) {
        const auto* nested = static_cast<const Container*>(item);
        const auto found = items.groups.find(nested);
        if (found == items.groups.end()) continue;
        for (const ValueGroup* child : found->second) {
          writeGroup(*child, *nested, depth + 1, elements);
          written.insert(child);
        }
      } else {
        collect(*static_cast<const GroupItemCollection*>(item), container, items, depth, attributes,
                elements, written);
      }
    }
  }

  void writeValue(const ValueBase& value, const ParameterRef& reference, std::size_t depth,
                  std::string& attributes, std::string& elements) {
    const char* name = checkedName(reference.getId());
    std::vector<std::string> texts;
    for (ValueIterator entry = value.getIterator(); entry.next();) {
      texts.push_back(ValueFileWriterImpl::escapeAttribute(entry.asString(), name));
    }
    if (!reference.isUnbounded()) {
      if (texts.size() > 1) {
        throw ConfigurationException(
            "The value \"%s\" holds %zu texts, but its parameter takes one", name, texts.size());
      }
      // A value without a text is written as an empty one, which reads back as an empty text.
      attributes += std::string(" ") + name + "=\"" + (texts.empty() ? "" : texts[0]) + "\"";
      return;
    }
    for (const std::string& text : texts) {
      elements += indentOf(depth + 1) + "<" + name + " value=\"" + text + "\"/>\n";
    }
  }

  static std::string indentOf(std::size_t depth) {
    std::string indent;
    for (std::size_t i = 0; i < depth; ++i) indent += INDENT;
    return indent;
  }

  const Specification& mSpecification;
};

}  // namespace

std::string ValueFileWriterImpl::compose(const Specification& specification,
                                         const ValueGroup& values) {
  return Composer(specification).compose(values);
}

std::string ValueFileWriterImpl::escapeAttribute(const std::string& text, const char* what) {
  if (text.size() > MAX_TEXT_BYTES) {
    throw ConfigurationException(
        "The text of \"%s\" is %zu bytes long; a value file holds at most %zu bytes a value", what,
        text.size(), MAX_TEXT_BYTES);
  }
  std::string escaped;
  escaped.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    unsigned int cp = 0;
    const std::size_t length = decodeUtf8(text, i, cp);
    if (length == 0) {
      throw ConfigurationException(
          "The text of \"%s\" is not UTF-8 (byte 0x%02X at offset %zu)", what,
          static_cast<unsigned int>(static_cast<unsigned char>(text[i])), i);
    }
    if (!zelk::host::XmlTokenReader::isXmlChar(cp)) {
      throw ConfigurationException(
          "The text of \"%s\" holds the character U+%04X at offset %zu, which XML 1.0 cannot "
          "carry",
          what, cp, i);
    }
    switch (cp) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      // Literal tabs and line ends are read back as spaces: keep them as references.
      case '\t':
        escaped += "&#9;";
        break;
      case '\n':
        escaped += "&#10;";
        break;
      case '\r':
        escaped += "&#13;";
        break;
      default:
        escaped.append(text, i, length);
        break;
    }
    i += length;
  }
  return escaped;
}

}  // namespace zelk::configuration::impl
