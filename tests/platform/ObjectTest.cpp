#include <quillon/file/DelimitFile.h>
#include <quillon/file/FileRecord.h>
#include <quillon/platform/HostHooks.h>

#include <gtest/gtest.h>

using namespace quillon;

namespace {

class CCreatable : public CObject {
    QUILLON_DECLARE_DYNCREATE(CCreatable)
public:
    int m_value = 42;
};

QUILLON_IMPLEMENT_DYNCREATE(CCreatable, CObject)

} // namespace

TEST(ObjectTest, RuntimeClassesReportNamesBasesAndCreateObjects) {
    CDelimitFile file;
    const CRuntimeClass* runtimeClass = file.GetRuntimeClass();
    EXPECT_STREQ(runtimeClass->m_lpszClassName, "CDelimitFile");
    EXPECT_STREQ(runtimeClass->m_pBaseClass->m_lpszClassName, "CStdioFileS");
    EXPECT_TRUE(file.IsKindOf(QUILLON_RUNTIME_CLASS(CObject)));
    EXPECT_FALSE(file.IsKindOf(QUILLON_RUNTIME_CLASS(CFileRecord)));
    EXPECT_EQ(runtimeClass->CreateObject(), nullptr); // not dynamically creatable

    CObject* created = QUILLON_RUNTIME_CLASS(CCreatable)->CreateObject();
    ASSERT_NE(created, nullptr);
    ASSERT_TRUE(created->IsKindOf(QUILLON_RUNTIME_CLASS(CCreatable)));
    EXPECT_EQ(static_cast<CCreatable*>(created)->m_value, 42);
    delete created;
}

// A message goes to the host's hook, whose answer comes back (what the hook receives is checked by
// the tests that record messages), or without a hook to standard error.
TEST(ObjectTest, MessagesGoThroughTheHostHookOrToStandardError) {
    HostHooks hooks;
    hooks.showMessage = [](const CString&, const CString&, MessageIcon) { return 7; };
    SetHostHooks(hooks);
    EXPECT_EQ(ShowMessage("Something", "Title", MessageIcon::Exclamation), 7);
    SetHostHooks({});
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(ShowMessage("Default", "Box", MessageIcon::Error), kMessageOk);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Box: Default\n");
}
