// The address of an object the class interface returned by reference, as the
// running program holds it.
//
// The registry answers a missing entry with a reference whose address is
// null. C++ has no such reference: a compiler may assume that no reference
// has a null address and fold `&reference == nullptr` to false, so a test
// comparing it directly would check nothing. The empty asm statement below
// tells the compiler that the pointer may have changed in between, so the
// comparison that follows is made on the address the library actually
// returned, at run time. (The well-defined way to see a missing pair is the
// flat interface's null pointer; the tests check that too.)
#ifndef ZO_TESTS_OBSERVED_ADDRESS_H
#define ZO_TESTS_OBSERVED_ADDRESS_H

template <class T>
const T* ObservedAddress(const T& object)
{
    const T* address = &object;
    asm volatile("" : "+r"(address));
    return address;
}

#endif
