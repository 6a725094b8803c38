// What the library's handles point to: host strings, memory blocks, arrays, objects.
//
// Text, data and elements are allocated with exactly the bytes they need, so that a sanitizer or
// valgrind sees a read past them, and freed at the thing's end. Not for users of the library:
// they hold Values.
#ifndef ZRK_STANDIN_THINGS_H
#define ZRK_STANDIN_THINGS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/records.h"
#include "standin/accounts.h"
#include "standin/class_info.h"
#include "standin/object.h"
#include "standin/value.h"

namespace standin {

using Bytes = std::unique_ptr<unsigned char[]>;

// The living thing of the current host at `handle`, or null.
Thing* Living(const void* handle);

// The first bytes of a text, with anything but printable ASCII as \xHH; no allocation until read.
class TextExcerpt {
 public:
  explicit TextExcerpt(std::string_view text);
  std::string Text() const;

 private:
  std::array<char, 24> bytes_{};
  std::size_t size_;
  bool cut_;
};

class HostString : public Thing {
 public:
  HostString(std::string_view bytes, std::uint32_t encoding);
  ~HostString() override;
  void* handle() override { return &record; }
  std::string Excerpt() const override { return excerpt_.Text(); }
  std::string_view bytes() const;

  alignas(8) zrk::REALstringStruct record;

 private:
  void End() override;
  Bytes buffer_;
  TextExcerpt excerpt_;
};

// A filled string-data record: the bytes that it points to, with or without a zero byte after
// them. The library's record carries the handle in its first host word.
class HostStringData : public Thing {
 public:
  HostStringData(std::string_view bytes, bool terminated);
  void* handle() override { return this; }
  std::string Excerpt() const override { return excerpt_.Text(); }
  const char* data() const { return reinterpret_cast<const char*>(data_.get()); }

 private:
  void End() override { data_.reset(); }
  Bytes data_;
  TextExcerpt excerpt_;
};

class HostMemoryBlock : public Thing {
 public:
  // Reports `size` whatever the number of bytes is; without data the pointer is null.
  HostMemoryBlock(std::string_view bytes, std::int32_t size, bool with_data);
  ~HostMemoryBlock() override;
  void* handle() override { return &record; }
  std::string_view bytes() const;
  // Moves to new memory of that many bytes; what there was is kept as far as it fits, new bytes
  // are zero.
  void Resize(std::size_t size);

  alignas(8) zrk::REALmemoryBlockStruct record;

 private:
  void End() override;
  void Hold(Bytes data, std::int32_t size);
  Bytes data_;
  std::size_t real_size_;
};

// An array of strings or of objects, holding one reference of the host's on each element.
class HostArray : public Thing {
 public:
  HostArray(Kind kind, bool direct_storage) : Thing(kind), direct_(direct_storage) {}
  ~HostArray() override;
  void* handle() override { return &record_; }
  std::string Excerpt() const override;

  std::size_t size() const { return elements_.size(); }
  void* at(std::size_t index) const { return elements_[index]; }
  // Takes a reference of its own on `element`, which may be null; `index` is at most size().
  void Insert(std::size_t index, void* element);
  // New elements are null; storage afterwards is exact.
  void Resize(std::size_t count);

 private:
  void End() override;
  void Refresh() { record_.elements = direct_ ? elements_.data() : nullptr; }

  struct alignas(8) Record {
    void** elements = nullptr;
  };
  Record record_;
  bool direct_;
  std::vector<void*> elements_;
};

// Objects: the library knows them by their addresses only.

class HostVariant : public Thing {
 public:
  explicit HostVariant(Value content) : Thing(Kind::kObject), content_(std::move(content)) {}
  void* handle() override { return this; }
  std::string Excerpt() const override;
  const Value& content() const { return content_; }
  // The content as the host's language writes it: "-5", "True", "1.5", a text as it is.
  Value StringValue() const;

 private:
  void End() override { content_ = Value(); }
  Value content_;
};

class HostExceptionObject : public Thing {
 public:
  explicit HostExceptionObject(std::string class_name)
      : Thing(Kind::kObject), error{std::move(class_name), {}, 0} {}
  void* handle() override { return this; }
  std::string Excerpt() const override { return error.class_name; }

  HostError error;

 private:
  void End() override {}
};

// The method of an object that runs, if one does, and how many tasks deep it was called.
struct CallUnderWay {
  const char* method = "";
  int task_depth = 0;
};

// An object of a registered class: a header, then the zero-filled instance record.
class HostInstance : public Thing {
 public:
  explicit HostInstance(const ClassInfo& class_info);
  ~HostInstance() override;
  void* handle() override { return memory_.get(); }
  std::string Excerpt() const override { return class_->name(); }
  const ClassInfo& class_info() const { return *class_; }
  unsigned char* data() const { return memory_.get() + class_->data_offset(); }

  CallUnderWay under_way;

 private:
  void End() override;
  const ClassInfo* class_;
  std::size_t size_;
  Bytes memory_;
};

// The functions that the class definition itself names; each does nothing where there is none.
// The constructor of programs is the method of that name. What a destructor raises is reported.
void ConstructInstance(HostInstance& instance);
void DestroyInstance(HostInstance& instance);

}  // namespace standin

#endif  // ZRK_STANDIN_THINGS_H
