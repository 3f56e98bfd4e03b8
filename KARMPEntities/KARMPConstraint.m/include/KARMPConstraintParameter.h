#pragma once

#include "KARMPExport.h"
#include "KARStatus.h"

#include <array>

class KARMPDeserializer;
class KARMPSerializer;

namespace karmp {

struct Content;
template <class C>
struct ContentOf;

} // namespace karmp

/// A record that a solver keeps with a constraint: numbers that the model stores without a look at
/// them.
class KARMP_API KARMPConstraintParameter
{
public:
    /// A record of zeros that is not initialized.
    KARMPConstraintParameter();
    /// A copy takes every number and whether the record is initialized.
    KARMPConstraintParameter(const KARMPConstraintParameter&);
    virtual ~KARMPConstraintParameter();
    KARMPConstraintParameter& operator=(const KARMPConstraintParameter&);

    /// Adds "ConstraintParameter" to a container. A null container and a failed addition of that
    /// element are a failed check and a failure; later failures are reported and give 0.
    virtual KARStatus Serialize(KARMPSerializer* serializer) const;
    /// Reads the record from its own element and makes it initialized, whatever the element holds.
    /// A null element is a failed check and a failure; missing items are reported and give 0.
    virtual KARStatus Deserialize(const KARMPDeserializer* deserializer);
    /// What a record holds in a document, within its element.
    static const karmp::Content& RecordContent();

    /// Stores the two types.
    void SetTypes(const int* types);
    /// Fills an array of two.
    void GetTypes(int* types) const;
    /// Stores the three tags.
    void SetTags(const unsigned int* tags);
    /// Fills an array of three.
    void GetTags(unsigned int* tags) const;
    /// Stores the three numbers.
    void SetParams(const double* params);
    /// Fills an array of three.
    void GetParams(double* params) const;

    /// Tells that the record has its content; a constraint without such a record writes none.
    void SetInitialized(bool initialized) { m_initialized = initialized; }
    bool IsInitialized() const { return m_initialized; }
    /// True when the first type and the first tag are set; the rest plays no part.
    bool IsComplete() const { return m_types[0] != 0 && m_tags[0] != 0; }

private:
    template <class C>
    friend struct karmp::ContentOf;

    std::array<int, 2> m_types{};
    std::array<unsigned int, 3> m_tags{};
    std::array<double, 3> m_params{};
    bool m_initialized = false;
};
