#include "imaging/MachineMemory.h"

#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <unistd.h>

#include <string_view>

#ifdef __SANITIZE_ADDRESS__
extern "C" void __sanitizer_purge_allocator(); // its header is not installed everywhere
#endif

namespace vellumine::imaging {
namespace {

class ControlGroups : public testing::Test {
protected:
    void list(std::string_view text) const { test::writeFile(m_folder / "list", text); }

    void limit(std::string_view file, std::string_view text) const
    {
        const auto path = m_folder.path() / "mounted" / file;
        std::filesystem::create_directories(path.parent_path());
        test::writeFile(path, text);
    }

    [[nodiscard]] std::optional<std::uint64_t> memory() const
    {
        return controlGroupMemory(m_folder / "list", m_folder / "mounted");
    }

    test::TemporaryFolder m_folder;
};

TEST_F(ControlGroups, theSmallestLimitOnTheWayCounts)
{
    list("0::/user.slice/batch.scope\n");
    limit("user.slice/memory.max", "3000\n");
    limit("user.slice/batch.scope/memory.max", "max\n");
    EXPECT_EQ(memory(), 3000U);
    limit("user.slice/batch.scope/memory.max", "2000\n");
    EXPECT_EQ(memory(), 2000U);
}

TEST_F(ControlGroups, thoseOfTheFirstVersionCount)
{
    list("11:cpu:/other\n4:hugetlb,memory:/box\n0::/\n");
    limit("memory/memory.limit_in_bytes", "9223372036854771712\n");
    limit("memory/box/memory.limit_in_bytes", "4096\n");
    limit("memory/other/memory.limit_in_bytes", "1\n");
    EXPECT_EQ(memory(), 4096U);
}

TEST_F(ControlGroups, aContainerSeesItsOwnAtTheRoot)
{
    list("0::/../elsewhere\n");
    limit("memory.max", "5000\n");
    EXPECT_EQ(memory(), 5000U);
}

TEST_F(ControlGroups, withoutLimitsThereIsNone)
{
    EXPECT_EQ(memory(), std::nullopt);
    list("nonsense\n0::/a\n:\n");
    limit("a/memory.max", "max\n");
    EXPECT_EQ(memory(), std::nullopt);
}

/// For a process of its own: ends it, with 0 where its memory is what its addresses are limited to.
[[noreturn]] void endWithLimitedAddresses()
{
    constexpr rlim_t addresses = rlim_t { 1 } << 20U;
#ifdef __SANITIZE_ADDRESS__
    // What is freed is kept from being used again, and new addresses there will be none.
    (void)memoryForThisProcess();
    __sanitizer_purge_allocator();
#endif
    rlimit limit {};
    limit.rlim_cur = addresses;
    limit.rlim_max = RLIM_INFINITY;
    ::setrlimit(RLIMIT_AS, &limit);
    ::_exit(memoryForThisProcess() == std::uint64_t { addresses } ? 0 : 1);
}

TEST(MemoryForThisProcess, isNoMoreThanItsAddresses)
{
    ASSERT_TRUE(memoryForThisProcess());
    EXPECT_EXIT(endWithLimitedAddresses(), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace vellumine::imaging
