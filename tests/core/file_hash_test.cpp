// Digests against published examples.

#include "core/file_hash.h"
#include "support/files.h"

namespace nmr::test {
namespace {

TEST(FileHash, GivesThePublishedDigests)
{
    struct Case {
        const char* name;
        std::string text;
        const char* digest; // FIPS 180-4 examples
    };
    const Case cases[] = {
        {"nothing", "", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {"abc", "abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {"two blocks", "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
         "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
        {"a million letters, read in pieces", std::string(1000000, 'a'),
         "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
    };
    const TempFolder folder;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Sha256(std::as_bytes(std::span(c.text))), c.digest);
        WriteText(folder / "file", c.text);
        const auto of_file = Sha256OfFile(folder / "file");
        ASSERT_TRUE(of_file);
        EXPECT_EQ(*of_file, c.digest);
    }
    EXPECT_FALSE(Sha256OfFile(folder.path())) << "a folder";
    EXPECT_FALSE(Sha256OfFile(folder / "none"));
}

} // namespace
} // namespace nmr::test
