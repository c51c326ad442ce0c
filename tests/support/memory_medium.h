// Files in memory, which tell what was done to them and fail on demand.
#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "qmt/general/files.h"

namespace QMT {

// A calling test sets the public members as it likes. Operations are named open, read, write, append, cut,
// size and close.
class MemoryMedium : public FileMedium {
public:
    std::map<String, std::string> files;
    std::size_t longestRead = 1 << 20;
    std::string failing;           // the operation that fails, after doing half of its work
    std::vector<std::string> done; // "write 0 5" or "cut 5"

    ErrorInfo* Open(String path, Access access, std::unique_ptr<File>& file) override {
        if (failing == "open" || (access == Access::Read && !files.contains(path)))
            return MakeError(u"Can't open " + path);
        file = std::make_unique<MemoryFile>(*this, files[path]);
        return nullptr;
    }

private:
    class MemoryFile : public File {
    public:
        MemoryFile(MemoryMedium& owner, std::string& bytes) : medium(owner), content(bytes) {}

        ErrorInfo* Read(char* bytes, std::size_t capacity, std::size_t& count) override {
            count = content.copy(bytes, std::min(capacity, medium.longestRead), position);
            position += count;
            return Outcome("read");
        }

        ErrorInfo* WriteAt(std::uint64_t offset, char const* bytes, std::size_t count) override {
            medium.done.push_back("write " + std::to_string(offset) + " " + std::to_string(count));
            std::size_t const written = medium.failing == "write" ? count / 2 : count;
            content.resize(std::max(content.size(), offset + written));
            content.replace(offset, written, bytes, written);
            return Outcome("write");
        }

        ErrorInfo* Append(char const* bytes, std::size_t count) override {
            content.append(bytes, medium.failing == "append" ? 0 : count);
            return Outcome("append");
        }

        ErrorInfo* CutAt(std::uint64_t size) override {
            medium.done.push_back("cut " + std::to_string(size));
            content.resize(std::min<std::size_t>(content.size(), size));
            return Outcome("cut");
        }

        ErrorInfo* Size(std::uint64_t& bytes) override {
            bytes = content.size();
            return Outcome("size");
        }

        ErrorInfo* Close() override { return Outcome("close"); }

    private:
        ErrorInfo* Outcome(std::string const& operation) const {
            return medium.failing == operation ? MakeError(u"Disc trouble") : nullptr;
        }

        MemoryMedium& medium;
        std::string& content;
        std::size_t position = 0;
    };
};

} // namespace QMT
