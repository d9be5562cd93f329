#pragma once

#include <cstddef>
#include <cstdio>
#include <functional>
#include <string_view>
#include <utility>

namespace morlen {

/// An information stream of an analysis that calls a visitor with each message when it is written.
class MessageStream
{
public:
  explicit MessageStream(std::function<void(std::string_view)> visitor)
      : visit(std::move(visitor)), file(fopencookie(this, "w", {nullptr, Write, nullptr, nullptr}))
  {
  }
  MessageStream(const MessageStream&) = delete;
  MessageStream& operator=(const MessageStream&) = delete;
  ~MessageStream() { std::fclose(file); }

  std::FILE* File() const { return file; }

private:
  static ssize_t Write(void* stream, const char* text, std::size_t size)
  {
    static_cast<MessageStream*>(stream)->visit({text, size});
    return static_cast<ssize_t>(size);
  }

  std::function<void(std::string_view)> visit;
  std::FILE* file;
};

}  // namespace morlen
