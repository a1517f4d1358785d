#include "base/CommandLine.h"

using namespace Qt::StringLiterals;

namespace kalivor {

OptionWord::OptionWord(const QString& word) : name(word.section(u'=', 0, 0)) {
  if (name.size() < word.size()) value = word.sliced(name.size() + 1);
}

QString NoAddress(const QString& value) {
  return u"keine Adresse von 0 bis 255: "_s + value;
}

QString Repeated() {
  return u"mehrfach angegeben"_s;
}

QString OptionFault(const QString& name, const QString& complaint) {
  return complaint.isEmpty() ? QString() : u"Option "_s + name + u": "_s + complaint + u'.';
}

}  // namespace kalivor
