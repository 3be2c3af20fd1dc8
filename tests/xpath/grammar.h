// Random documents and random expressions over the names in them.
#pragma once

#include <initializer_list>
#include <random>
#include <string>

// What the texts may hold. The other library has no part in some: it sees through
// entity references, takes CDATA sections for text and has no nodes for types.
enum class EGrammar { kOurs, kShared };

class CGrammar {
 public:
  CGrammar(unsigned seed, EGrammar kind) : m_Random(seed), m_IsOurs(kind == EGrammar::kOurs) {}

  std::string Document() {
    const std::string type =
        m_IsOurs ? "<!DOCTYPE a [<!ENTITY e 'x<a b=\"1\"/>'><!ATTLIST b d CDATA 'y'>]>" : "";
    return type + "<!--c--><a xmlns:p='u' xmlns:q='u'>" + Content(4) + "</a><?i d?>";
  }

  // Selects nodes.
  std::string Union() {
    std::string text = Path(2);
    if (OneIn(6)) text += " | " + Path(2);
    if (OneIn(6)) {  // the same path to another name
      const std::string start = Any({"//", "@", Path(1) + "/"});
      text = start + Test() + "|" + start + Test();
    }
    if (OneIn(10)) text = "(" + text + ")" + Position() + Any({"", "/a", "//b", "/..", "/@a"});
    return text;
  }

  // Of any type.
  std::string Value(int levels) {
    switch (Below(levels == 0 ? 4 : 19)) {
      case 0:
        return Any({"1", "2", "0", "10", "-1", "1.5", ".5"});
      case 1:
        return Any({"'t'", "\"1\"", "''", "'2'", "'a'", "' '"});
      case 2:
        return Any({"position()", "last()", "true()", "false()", "name()", "local-name()"});
      case 3:
      case 4:
        return Path(levels / 2);
      case 5:
        return "not(" + Value(levels - 1) + ")";
      case 6:
        return Value(levels - 1) + Any({" and ", " or "}) + Value(levels - 1);
      case 7:
      case 8:
        return Operand(levels) + Any({" = ", "=", "!="}) + Operand(levels);
      case 9:
      case 10:  // no truth values: Xalan-C takes them for unequal by "<=" and ">="
        return Size(levels) + Any({" < ", "<=", " > ", ">="}) + Size(levels);
      case 11:
        return Any({"contains(", "starts-with("}) + Text(levels) + ", " + Text(levels) + ")";
      case 12:
        return Any({"count(", "count(", "sum(", "name(", "namespace-uri("}) + Path(levels - 1) +
               ")";
      case 13:
        return Any({"string(", "number(", "boolean(", "string-length(", "normalize-space(",
                    "floor(", "ceiling(", "round(", "-(", "-("}) +
               Value(levels - 1) + ")";
      case 14:
        return "(" + Value(levels - 1) + ")";
      case 15:
        return Any({"substring-before(", "substring-after(", "concat("}) + Whole(levels) + "," +
               Value(levels - 1) + ")";
      case 16:
        return "substring(" + Whole(levels) + ", " + Count() +
               Any({")", ", 2)", "," + Count() + ")"});
      case 17:
        return Count() + Any({" + ", "+", " - ", "-", " * ", " div 2 * ", " mod "}) + Count() +
               Any({"", " - " + Count(), "*" + Count()});
      default:
        return Path(levels - 1) + " | " + Path(levels - 1);
    }
  }

  std::size_t Below(std::size_t count) { return m_Random() % count; }

 private:
  bool OneIn(unsigned count) { return Below(count) == 0; }
  std::string Any(std::initializer_list<std::string> texts) {
    return texts.begin()[Below(texts.size())];
  }

  std::string Content(int levels) {
    std::string text;
    for (std::size_t i = Below(5); i > 0; --i) text += levels == 0 ? Leaf() : Child(levels);
    return text;
  }
  std::string Child(int levels) { return OneIn(3) ? Leaf() : Element(levels - 1); }
  std::string Leaf() {
    if (m_IsOurs && OneIn(3)) return Any({"<![CDATA[s]]>", "&e;"});
    return Any({"t", "1", " 2 ", "<!--c-->", "<?i d?>", "<b/>", "<a>t</a>", "<b>10</b>"});
  }
  std::string Element(int levels) {
    const std::string name = Any({"a", "a", "b", "b", "p:a", "q:b"});
    std::string attributes = Any({"", " a='1'", " a='t'"}) + Any({"", " b='2'"}) +
                             Any({"", " p:a='2'"}) + Any({"", " xml:lang='en'"});
    if (m_IsOurs) attributes += Any({"", " xmlns='v'"}) + Any({"", " xmlns:p='v'"});
    return "<" + name + attributes + ">" + Content(levels) + "</" + name + ">";
  }

  std::string Path(int levels) {
    std::string text = Any({"", "", "/", "//", ".//"}) + Step(levels);
    for (std::size_t i = Below(3); i > 0; --i) text += Any({"/", "/", "//"}) + Step(levels);
    return text;
  }

  std::string Step(int levels) {
    if (OneIn(8)) return Any({".", ".."});
    std::string step = Axis() + Test();
    while (OneIn(3)) step += Predicate(levels);
    return step;
  }
  std::string Axis() {
    return Any({"", "", "", "", "", "@", "self::", "parent::", "child::", "attribute::",
                "descendant::", "descendant-or-self::", "ancestor::", "ancestor-or-self::",
                "following-sibling::", "preceding-sibling::", "preceding::", "following::"});
  }
  std::string Test() {
    if (m_IsOurs && OneIn(10)) return Any({"r:a", "xmlns", "xmlns:p", "processing-instruction()"});
    return Any({"a", "a", "b", "b", "d", "*", "*", "p:a", "p:*", "q:b", "node()", "text()",
                "comment()", "xml:*"});
  }
  std::string Predicate(int levels) {
    return levels == 0 || OneIn(2) ? Position() : "[" + Value(levels) + "]";
  }
  std::string Position() {
    if (m_IsOurs && OneIn(8)) return Any({"[ 2 ]", "[03]", "[18446744073709551617]", "[1][1]"});
    return Any({"[1]", "[2]", "[0]", "[1.0]", "[1.5]", "[last()]", "[last() - 1]",
                "[position() < 3]", "[position() >= 2]", "[position() mod 2 = 0]",
                "[position() = last()]", "[position() != 1]", "[@a]", "[b]"});
  }

  std::string Operand(int levels) { return OneIn(2) ? Path(0) : "(" + Value(levels - 1) + ")"; }
  std::string Size(int levels) { return OneIn(2) ? Path(levels / 2) : Any({Count(), "'1'", "-1"}); }
  std::string Text(int levels) {
    return OneIn(3) ? Any({"'t'", "'1'", "''", "string(/)"}) : Path(levels / 2);
  }
  // To the other library a lone minus, as may be cut from a number, is 0.
  std::string Whole(int levels) { return m_IsOurs ? Value(levels - 1) : Path(levels / 2); }
  std::string Count() { return Any({"position()", "last()", "1", "2", "count(*)", "count(../*)"}); }

  std::mt19937 m_Random;
  const bool m_IsOurs;
};
