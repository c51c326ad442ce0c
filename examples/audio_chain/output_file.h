// A file that appears under its name only when it is complete.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace Audio {

// The caller writes, calls `Close`, and then `Commit`. Until `Commit` all stands in a file beside the final
// one, named .audio_chain-<digits>.part, which the destructor deletes. So an existing file under the final
// name stays whole until it is replaced at once; a program that is killed leaves the .part file behind, and
// nothing else.
//
// A final name that is a symbolic link means the file it leads to. The new file gets the permissions of the
// one that it replaces. For one thread at a time. Only a Failure is thrown, and it quotes the final name.
//
//     OutputFile file(path);
//     file.Write(bytes, size);
//     file.Close();
//     file.Commit();
class OutputFile {
public:
    explicit OutputFile(std::filesystem::path const& path);
    ~OutputFile();
    OutputFile(OutputFile const&) = delete;
    OutputFile& operator=(OutputFile const&) = delete;

    // Bytes written at the position, which moves on behind them. Fewer than asked for, if the disc is full
    // for example, is a failure that `Close` reports.
    std::int64_t Write(void const* bytes, std::int64_t count);

    // Moves the position; it may not lie before the beginning.
    void Seek(std::int64_t newPosition) {
        moved = moved || newPosition != position;
        position = newPosition;
    }

    std::int64_t Position() const { return position; }

    std::int64_t Size() const { return size; }

    // Brings everything to the system. Throws if that, or any write before it, has failed.
    void Close();

    // Where the bytes are until `Commit`.
    std::filesystem::path const& TemporaryPath() const { return temporaryPath; }

    // Gives the closed file its final name, in one step.
    void Commit();

private:
    [[noreturn]] void ThrowWriteFailure() const;

    std::filesystem::path finalPath;
    std::filesystem::path temporaryPath;
    std::filebuf file;
    std::int64_t position = 0;
    std::int64_t size = 0;
    bool moved = false; // the open file stands elsewhere
    int firstError = 0; // an error number of the system
    bool committed = false;
};

} // namespace Audio
