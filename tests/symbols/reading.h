// What the samples have in common: a function that is named by a pointer to a member.
#pragma once

template <class Member>
struct HolderOf;
template <class T, class Holder>
struct HolderOf<T Holder::*>
{
    using Type = Holder;
};

template <auto Member>
double Read(const void* record)
{
    using Holder = typename HolderOf<decltype(Member)>::Type;
    return static_cast<double>(static_cast<const Holder*>(record)->*Member);
}

using Reader = double (*)(const void*);
