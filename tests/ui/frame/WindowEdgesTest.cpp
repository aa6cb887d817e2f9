#include "ui/frame/WindowEdges.h"

#include "support/NamedRows.h"

#include <gtest/gtest.h>

namespace vellumine {
namespace {

struct Row {
    const char* name;
    QPointF position;
    Qt::Edges edges;
    Qt::CursorShape cursor;
};

class WindowEdgesTest : public testing::TestWithParam<Row> { };

TEST_P(WindowEdgesTest, SaysWhatAPressWouldDrag)
{
    const Qt::Edges edges = WindowEdges::edgesAt(GetParam().position, QSizeF(820, 440));
    EXPECT_EQ(edges.toInt(), GetParam().edges.toInt());
    EXPECT_EQ(WindowEdges::cursorFor(edges), GetParam().cursor);
}

INSTANTIATE_TEST_SUITE_P(Places, WindowEdgesTest,
    testing::Values(Row { "middle", { 400, 200 }, {}, Qt::ArrowCursor },
        Row { "left", { 0, 200 }, Qt::LeftEdge, Qt::SizeHorCursor },
        Row { "lastPixelOfTheLeftEdge", { 4.9, 200 }, Qt::LeftEdge, Qt::SizeHorCursor },
        Row { "besideTheLeftEdge", { 5, 200 }, {}, Qt::ArrowCursor },
        Row { "right", { 819, 200 }, Qt::RightEdge, Qt::SizeHorCursor },
        Row { "top", { 400, 2 }, Qt::TopEdge, Qt::SizeVerCursor },
        Row { "bottom", { 400, 438 }, Qt::BottomEdge, Qt::SizeVerCursor },
        Row { "topLeft", { 0, 0 }, Qt::TopEdge | Qt::LeftEdge, Qt::SizeFDiagCursor },
        Row {
            "alongTheTopNearTheLeft", { 13, 1 }, Qt::TopEdge | Qt::LeftEdge, Qt::SizeFDiagCursor },
        Row { "alongTheTopFarFromTheLeft", { 14, 1 }, Qt::TopEdge, Qt::SizeVerCursor },
        Row { "insideTheCorner", { 10, 10 }, {}, Qt::ArrowCursor },
        Row { "topRight", { 819, 0 }, Qt::TopEdge | Qt::RightEdge, Qt::SizeBDiagCursor },
        Row { "bottomLeft", { 1, 430 }, Qt::BottomEdge | Qt::LeftEdge, Qt::SizeBDiagCursor },
        Row { "bottomRight", { 819, 439 }, Qt::BottomEdge | Qt::RightEdge, Qt::SizeFDiagCursor },
        Row { "outside", { -1, 200 }, {}, Qt::ArrowCursor }),
    test::RowName());

} // namespace
} // namespace vellumine
