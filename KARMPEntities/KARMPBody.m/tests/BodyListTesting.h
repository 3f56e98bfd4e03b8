// The rules of lists, for each list of a body in space or in a plane.
#pragma once

#include "KARStatus.h"
#include "QOBSharedHandle.h"

#include <gtest/gtest.h>

#include <functional>

/// One list of a body: what it holds, and how it is reached.
template <class Body, class T, class Make>
void CheckList(Body& body, const Make& make, KARStatus (Body::*add)(const QOBSharedHandle<T>&),
               KARStatus (Body::*remove)(const QOBSharedHandle<T>&),
               KARStatus (Body::*get)(int, QOBSharedHandle<T>&) const, int (Body::*count)() const,
               const std::function<void()>& expectReport)
{
    const QOBSharedHandle<T> first(make(L"first"));
    const QOBSharedHandle<T> second(make(L"second"));
    const QOBSharedHandle<T> third(make(L"third"));
    EXPECT_EQ((body.*add)({}), KARFailure);
    expectReport();
    EXPECT_EQ((body.*add)(first), KARSuccess);
    EXPECT_EQ((body.*add)(second), KARSuccess);
    EXPECT_EQ((body.*add)(third), KARSuccess);
    EXPECT_EQ((body.*add)(second), KARUnchanged);
    EXPECT_EQ((body.*count)(), 3);

    QOBSharedHandle<T> found(first);
    EXPECT_EQ((body.*get)(-1, found), KARFailure);
    EXPECT_FALSE(found);
    found = first;
    EXPECT_EQ((body.*get)(3, found), KARFailure);
    EXPECT_FALSE(found);
    EXPECT_EQ((body.*get)(1, found), KARSuccess);
    EXPECT_EQ(found, second);

    EXPECT_EQ((body.*remove)({}), KARFailure);
    expectReport();
    EXPECT_EQ((body.*remove)(second), KARSuccess);
    EXPECT_EQ((body.*remove)(second), KARUnchanged);
    EXPECT_EQ((body.*count)(), 2);
    EXPECT_EQ((body.*get)(1, found), KARSuccess);
    EXPECT_EQ(found, third);
}
