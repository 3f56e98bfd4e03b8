#include "QOBTryCast.h"

#include "ObjectModelTestClasses.h"
#include "QOBException.h"

#include <gtest/gtest.h>

namespace {

TEST(TryCast, AnswersNullWhereAConversionThrows)
{
    const QOBSharedHandle<Link> link(new Link);
    EXPECT_THROW(QOBSharedHandle<Unrelated>{link}, QOBEInvalidCast);
    EXPECT_FALSE(QOBTryCast<Unrelated>(link));
    EXPECT_FALSE(QOBTryCast<DerivedLink>(link));
    EXPECT_FALSE(QOBTryCast<Link>(QOBSharedHandle<Link>()));
}

TEST(TryCast, RefersToTheSameObject)
{
    const QOBSharedHandle<Link> link(new DerivedLink);
    const QOBSharedHandle<DerivedLink> derived = QOBTryCast<DerivedLink>(link);
    EXPECT_EQ(derived, link);
    EXPECT_EQ(QOBTryCast<Link>(derived), link);
}

} // namespace
