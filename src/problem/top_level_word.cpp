#include "problem/top_level_word.h"

#include "base/read_observer.h"

namespace morlen {

TopLevelWord ReadTopLevelWord(TextScan& text)
{
  const TopLevelWord next = {text.ReadWord(), text.LastBlock()};
  if (next.word.empty())
    return {};
  if (next.word[0] == '#') {
    text.SkipLine();
    return {};
  }
  Note(ReadEvent::Keyword, next.word);
  if (IsBlockKeyword(next.word))
    text.EnterBlock(next.word);
  return next;
}

}  // namespace morlen
