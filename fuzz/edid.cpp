// EDID blocks: any bytes, and blocks made of an identity that must come out again.
#include "pnp/edid.h"
#include "fuzz_support.h"

#include <algorithm>

namespace {

bool IsClean(const QString& text) {
    return text == text.trimmed() && std::none_of(text.begin(), text.end(), [](QChar c) {
               return c.category() == QChar::Other_Control && c != u'\t';
           });
}

void Check(const std::optional<pnp::Edid>& edid) {
    if (!edid)
        return;
    const QString& vendor = edid->vendor;
    fuzz::Require(vendor.isEmpty() ||
                      (vendor.size() == 3 &&
                       std::all_of(vendor.begin(), vendor.end(), [](QChar c) { return c >= u'A' && c <= u'Z'; })),
                  "a vendor is three letters or none");
    fuzz::Require(edid->name.size() <= 13, "a descriptor's text is 13 bytes at most");
    fuzz::Require(IsClean(edid->name), "a name is clean");
}

void CheckRoundTrip(fuzz::Reader reader) {
    std::string block("\x00\xFF\xFF\xFF\xFF\xFF\xFF\x00", 8);
    block.resize(128, '\0');
    QString vendor;
    int letters = 0;
    for (int i = 0; i < 3; ++i) {
        const int letter = reader.Number(1, 26);
        letters = letters << 5 | letter;
        vendor += QLatin1Char(char('A' + letter - 1));
    }
    const quint16 product = reader.Word();
    block[8] = char(letters >> 8);
    block[9] = char(letters);
    block[10] = char(product);
    block[11] = char(product >> 8);
    QString name;
    const std::size_t at = 54 + 18 * std::size_t(reader.Number(0, 3));
    block[at + 3] = char(0xFC);
    for (std::size_t i = 0; i < 12; ++i) {
        const char letter = char(reader.Number('0', 'Z'));
        name += QLatin1Char(letter);
        block[at + 5 + i] = letter;
    }
    block[at + 17] = '\n';
    const std::optional<pnp::Edid> edid = pnp::ParseEdid(block);
    fuzz::Require(edid && edid->vendor == vendor && edid->product == product && edid->name == name,
                  "an identity comes out as it went in");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    Check(pnp::ParseEdid(bytes));
    // Most inputs lack the header, so the rest is tried behind one as well.
    Check(pnp::ParseEdid(std::string("\x00\xFF\xFF\xFF\xFF\xFF\xFF\x00", 8) + bytes));
    CheckRoundTrip(fuzz::Reader(data, size));
    return 0;
}
