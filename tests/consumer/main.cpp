// Uses both libraries in the ways that an installation can break: exported functions, classes with virtual
// operations, failures thrown across the boundary, a derived link.
#include <cstdio>
#include <cstring>
#include <memory>

#include <qmt/chain/chain_links.h>
#include <qmt/general/errors.h>
#include <qmt/general/string.h>
#include <qmt/time/utc_local_time.h>

namespace {

template <class Base>
class Link : public Base {
    void Process() override {}
};

bool PassesABuffer() {
    Link<QMT::ExternalPushLink> source;
    Link<QMT::ExternalPullLink> sink;
    source.GetBuffers().SetProperties(2, 8);
    sink.SetPreceedingLink(&source);
    unsigned char** const written = source.BeginWrite();
    if (!written)
        return false;
    std::memcpy(*written, "payload", 8);
    source.EndWrite();
    unsigned char** const read = sink.BeginRead();
    return read && std::memcmp(*read, "payload", 8) == 0;
}

bool CatchesAFailure() {
    long int number = 0;
    try {
        QMT::String(u"no number") >> number;
    } catch (QMT::ErrorInfo* error) {
        std::unique_ptr<QMT::ErrorInfo> const owned(error);
        return static_cast<QMT::String const&>(*owned).Find(u"no number", 0) != -1;
    }
    return false;
}

} // namespace

int main() {
    bool const passes = PassesABuffer(), catches = CatchesAFailure();
    bool const tells = QMT::UTCTime::GetTimeNow().YMD(true).Len() == 10;
    std::printf("chain %d, failures %d, time %d\n", passes, catches, tells);
    return passes && catches && tells ? 0 : 1;
}
