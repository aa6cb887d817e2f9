#include "app/tray/StatusItemDrops.h"
#include "app/tray/DraggedItems.h"
#include "platform/FilePath.h"
#include "support/QtPrinters.h"
#include "support/TestImages.h"

#include <QMimeData>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace vellumine {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class StatusItemDrag : public testing::Test {
protected:
    QUrl file(const char* name)
    {
        test::writeFile(m_folder / name, std::string_view("x"));
        return platform::fileUrl(m_folder / name);
    }

    QUrl folder(const char* name)
    {
        std::filesystem::create_directory(m_folder / name);
        return platform::fileUrl(m_folder / name);
    }

    QUrl missing(const char* name) { return platform::fileUrl(m_folder / name); }

    test::TemporaryFolder m_folder;
    QList<QList<QUrl>> m_processed;
    int m_changes = 0;
    StatusItemDrops m_drops { [this](const QList<QUrl>& urls) { m_processed.append(urls); },
        [this] { ++m_changes; } };
};

TEST_F(StatusItemDrag, aPhotoInUpperCaseHighlightsAndIsProcessed)
{
    const QUrl photo = file("photo.JPG");
    EXPECT_TRUE(m_drops.draggingEntered({ photo }));
    EXPECT_TRUE(m_drops.isHighlighted());
    EXPECT_TRUE(m_drops.performDrop({ photo }));
    EXPECT_FALSE(m_drops.isHighlighted());
    EXPECT_THAT(m_processed, ElementsAre(ElementsAre(photo)));
}

TEST_F(StatusItemDrag, aFolderIsTakenWhateverItsName)
{
    const QUrl album = folder("album.jpg.d");
    EXPECT_TRUE(m_drops.draggingEntered({ album }));
    EXPECT_TRUE(m_drops.isHighlighted());
    EXPECT_TRUE(m_drops.performDrop({ album }));
    EXPECT_THAT(m_processed, ElementsAre(ElementsAre(album)));
}

TEST_F(StatusItemDrag, onlyWhatIsAcceptedIsProcessed)
{
    const QList<QUrl> drag { file("notes.txt"), file("a.png") };
    EXPECT_TRUE(m_drops.draggingEntered(drag));
    EXPECT_TRUE(m_drops.isHighlighted());
    EXPECT_TRUE(m_drops.performDrop(drag));
    EXPECT_THAT(m_processed, ElementsAre(ElementsAre(drag.at(1))));
}

TEST_F(StatusItemDrag, aDragOfNothingAcceptableIsRefused)
{
    const QList<QUrl> drag { file("notes.txt") };
    EXPECT_FALSE(m_drops.draggingEntered(drag));
    EXPECT_FALSE(m_drops.isHighlighted());
    EXPECT_EQ(m_changes, 0);
    EXPECT_FALSE(m_drops.performDrop(drag));
    EXPECT_THAT(m_processed, IsEmpty());
}

TEST_F(StatusItemDrag, aDragThatGoesElsewhereEndsTheHighlight)
{
    EXPECT_TRUE(m_drops.draggingEntered({ file("a.png") }));
    m_drops.draggingExited();
    EXPECT_FALSE(m_drops.isHighlighted());
    EXPECT_EQ(m_changes, 2);
    EXPECT_THAT(m_processed, IsEmpty());
}

TEST_F(StatusItemDrag, aRefusedDragLeavesTheHighlightOfAnother)
{
    EXPECT_TRUE(m_drops.draggingEntered({ file("a.png") }));
    EXPECT_FALSE(m_drops.draggingEntered({ file("notes.txt") }));
    EXPECT_TRUE(m_drops.isHighlighted());
}

TEST_F(StatusItemDrag, anEmptyDropIsRefusedAndEndsTheHighlight)
{
    EXPECT_FALSE(m_drops.draggingEntered({}));
    EXPECT_TRUE(m_drops.draggingEntered({ file("a.png") }));
    EXPECT_FALSE(m_drops.performDrop({}));
    EXPECT_FALSE(m_drops.isHighlighted());
}

TEST_F(StatusItemDrag, otherPicturesAreNotAccepted)
{
    for (const char* name : { "drawing.svg", "photo.avif", "photo.raw", "photo.jpe", "jpg" }) {
        EXPECT_FALSE(isAcceptedItem(file(name))) << name;
    }
}

TEST_F(StatusItemDrag, everyListedExtensionIsAcceptedWithoutLookingAtTheFile)
{
    for (const char* name : { "a.jpg", "a.jpeg", "a.png", "a.gif", "a.tif", "a.tiff", "a.bmp",
             "a.heic", "a.heif", "a.webp", "a.WebP" }) {
        EXPECT_TRUE(isAcceptedItem(missing(name))) << name;
    }
}

TEST_F(StatusItemDrag, whatCannotBeLookedAtIsNoFolder)
{
    EXPECT_FALSE(isAcceptedItem(missing("nothing here")));
    EXPECT_FALSE(isAcceptedItem(QUrl()));
    EXPECT_FALSE(isAcceptedItem(QUrl(QStringLiteral("https://kestrova.example/a.png"))));
}

TEST_F(StatusItemDrag, whatLiesOnAnotherMachineIsNotAccepted)
{
    EXPECT_FALSE(isAcceptedItem(QUrl(QStringLiteral("file://nas.kestrova.example/a.png"))));
}

TEST(DraggedUrls, areWithoutTheNameOfThisMachine)
{
    EXPECT_THAT(draggedUrls(QByteArray("file://localhost/a.png\r\n")),
        ElementsAre(QUrl(QStringLiteral("file:///a.png"))));
}

TEST(DraggedUrls, comeInTheOrderOfTheList)
{
    EXPECT_THAT(draggedUrls(QByteArray("# two files\r\nfile:///b%20c.png\r\nfile:///a.png\r\n")),
        ElementsAre(
            QUrl(QStringLiteral("file:///b%20c.png")), QUrl(QStringLiteral("file:///a.png"))));
}

TEST(DraggedUrls, keepNamesThatAreNoUtf8)
{
    const QList<QUrl> urls = draggedUrls(QByteArray("file:///photo%FF.png"));
    ASSERT_THAT(urls, SizeIs(1));
    EXPECT_EQ(platform::toPath(urls.first()).string(), "/photo\xFF.png");
}

TEST(DraggedUrls, areNoneWhereSomethingIsNoUrl)
{
    EXPECT_THAT(draggedUrls(QByteArray("file:///a.png\r\nnot a url\r\n")), IsEmpty());
    EXPECT_THAT(draggedUrls(QByteArray("file:///a.png\nfile://[broken/\n")), IsEmpty());
}

TEST(DraggedUrls, areNoneWhereNothingCanBeRead)
{
    EXPECT_THAT(draggedUrls(QByteArray()), IsEmpty());
    QMimeData text;
    text.setText(QStringLiteral("file:///a.png"));
    EXPECT_THAT(draggedUrls(text), IsEmpty());
}

TEST(DraggedUrls, areReadFromWhatAFileManagerOffers)
{
    QMimeData data;
    data.setUrls({ QUrl(QStringLiteral("file:///a.png")), QUrl(QStringLiteral("file:///b")) });
    EXPECT_EQ(draggedUrls(data), data.urls());
}

} // namespace
} // namespace vellumine
