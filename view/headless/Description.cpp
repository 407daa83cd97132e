#include "view/headless/Description.h"

#include "view/Names.h"

#include <sstream>

namespace tavelle::view {
namespace {

class Describer {
 public:
  std::string operator()(const Create& create) {
    line_ << "create " << create.node << ' ' << nameOf(create.type);
    return with(create.attributes);
  }
  std::string operator()(const Update& update) {
    line_ << "update " << update.node;
    return with(update.attributes);
  }
  std::string operator()(const Insert& insert) {
    line_ << "insert " << insert.node;
    return at(insert.parent, insert.after);
  }
  std::string operator()(const Move& move) {
    line_ << "move " << move.node;
    return at(move.parent, move.after);
  }
  std::string operator()(const Remove& remove) {
    line_ << "remove " << remove.node;
    return line_.str();
  }

 private:
  std::string at(NodeID parent, NodeID after) {
    line_ << " in " << parent;
    if (after != 0) line_ << " after " << after;
    return line_.str();
  }

  std::string with(const Attributes& attributes) {
    line_ << std::boolalpha;
    for (const auto& [attribute, value] : attributes) {
      line_ << ' ' << nameOf(attribute) << '=';
      if (const auto* text = std::get_if<std::string>(&value)) line_ << '"' << *text << '"';
      if (const auto* number = std::get_if<double>(&value)) line_ << *number;
      if (const auto* flag = std::get_if<bool>(&value)) line_ << *flag;
    }
    return line_.str();
  }

  std::ostringstream line_;
};

}  // namespace

std::string describe(const HostOperation& operation) {
  return std::visit(Describer{}, operation);
}

}  // namespace tavelle::view
