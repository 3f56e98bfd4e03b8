// Worlds with shapes through documents, and what the check tells of streams.
#include "KAR3DBagRep.h"
#include "KAR3DMeshRep.h"
#include "KAR3DPolylineRep.h"
#include "KARBase64.h"
#include "KARBody.h"
#include "KARGMKStream.h"
#include "KARIGMKObjectsSave.h"
#include "KARLineCurve.h"
#include "KARMP3DRep.h"
#include "KARMPBody2D.h"
#include "KARMPDocuments.h"
#include "KARMPShapeBody.h"
#include "KARMPTestFixture.h"
#include "KARMPWorld.h"
#include "KARMPWorldDifference.h"
#include "KARSceneGraphBlocks.h"
#include "QOBBasicWorld.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <initializer_list>
#include <string>

using namespace karmp::documents;

namespace {

class ShapeDocument : public KARMPTestFixture
{
protected:
    template <class Family, class T>
    QOBSharedHandle<T> File(const QOBSharedHandle<T>& entity)
    {
        m_basicWorld->addLogicalChild(entity);
        m_world->Add<Family>(entity);
        return entity;
    }
    static KAR3DRep* Triangle()
    {
        return KAR3DMeshRep::CreateRep({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}});
    }
    QOBSharedHandle<KARMP3DRep> AddRep(KAR3DRep* rep)
    {
        const auto body = File<KARMPBody>(KARMPBody::create(L"body"));
        const auto shape = File<KARMPShape>(KARMP3DRep::create(L"look"));
        shape->Set3DRep(rep);
        shape->LinkToBody(body);
        body->LinkToShape(shape);
        return shape;
    }
    QOBSharedHandle<KARMPShapeBody> AddOutline()
    {
        const auto body = File<KARMPBody>(KARMPBody2D::create(L"planar"));
        const auto shape = File<KARMPShape>(KARMPShapeBody::create(L"outline"));
        KARBody* const stored = KARBody::Create();
        shape->SetBody(stored);
        stored->Release();
        shape->LinkToBody(body);
        body->LinkToShape(shape);
        return shape;
    }
    std::string Saved()
    {
        std::string text;
        for (const Diagnostic& item : SaveText(m_world, text).items)
            ADD_FAILURE() << Format(item);
        return text;
    }
    /// The document with another stream in the first shape.
    std::string SavedWith(const std::string& stream)
    {
        std::string text = Saved();
        const std::size_t begin = text.find("stream=\"") + 8;
        return text.replace(begin, text.find('"', begin) - begin, stream);
    }
    static std::string SavedStream(const std::string& document)
    {
        const std::size_t begin = document.find("stream=\"") + 8;
        return document.substr(begin, document.find('"', begin) - begin);
    }

    QOBSharedHandle<QOBBasicWorld> m_basicWorld = QOBBasicWorld::create(L"World");
    QOBSharedHandle<KARMPWorld> m_world = KARMPWorld::create(m_basicWorld);
};

/// The findings of the check on streams and shapes, as codes with paths.
std::vector<std::string> Found(const std::string& document)
{
    std::vector<std::string> found;
    for (const Diagnostic& item : CheckText(document).items)
        if (item.code >= Code::UnreadableStream && item.code <= Code::RepWithoutMesh)
            found.push_back(std::string(CodeText(item.code)) + " " +
                            item.path.substr(sizeof "/KARMPDocument/World/" - 1));
    return found;
}

using Findings = std::vector<std::string>;

std::string Base64(const void* bytes, std::size_t size)
{
    return kar::Base64Encode({static_cast<const unsigned char*>(bytes), size});
}

std::string StreamOf(std::initializer_list<KARIGMKObject*> objects, int mode)
{
    KARListPtrKARIGMKObject list;
    for (KARIGMKObject* const object : objects)
        list.Append(object);
    KARGMKStream stream;
    std::size_t position = 0;
    int version = 0;
    stream.OpenWriteStreamHeader(mode, position, version);
    KARIGMKObjectsSave(stream).Save(list, nullptr);
    stream.CloseWriteStreamHeader(position, version);
    for (KARIGMKObject* const object : objects)
        object->Release();
    return Base64(stream.GetBytes().data(), stream.GetLength());
}

TEST_F(ShapeDocument, ComesBackWithItsShapes)
{
    AddRep(Triangle());
    AddOutline();
    const std::string text = Saved();
    EXPECT_EQ(Found(text), Findings{});
    const LoadResult result = LoadText(text);
    for (const Diagnostic& item : result.diagnostics.items)
        ADD_FAILURE() << Format(item);
    ASSERT_TRUE(result.world);
    ASSERT_EQ(result.world->Count<KARMPShape>(), 2);
    EXPECT_TRUE(FindDifferences(*m_world, *result.world).empty());
}

TEST_F(ShapeDocument, TellsThatARepresentationCannotBeRead)
{
    AddRep(Triangle());
    std::string stream = SavedStream(Saved());
    stream[40] = stream[40] == 'A' ? 'B' : 'A';
    const LoadResult result = LoadText(SavedWith(stream));
    ASSERT_FALSE(result.diagnostics.items.empty());
    EXPECT_EQ(result.diagnostics.items[0].code, Code::FailedCheck);
    EXPECT_EQ(result.diagnostics.items[0].path, "/KARMPDocument/World/Shapes/Rep3D");
    ASSERT_TRUE(result.world);
    EXPECT_EQ(result.world->Count<KARMPShape>(), 1);
}

TEST_F(ShapeDocument, CheckTellsOfSceneGraphsThatCannotBeRead)
{
    AddRep(Triangle());
    std::string damaged = SavedStream(Saved());
    damaged[40] = damaged[40] == 'A' ? 'B' : 'A';
    for (const std::string& stream :
         {std::string(), std::string("no"), std::string("AAAA"), damaged})
        EXPECT_EQ(Found(SavedWith(stream)), Findings{"unreadable-stream Shapes/Rep3D"}) << stream;
}

TEST_F(ShapeDocument, CheckTellsOfASceneGraphInThePlainForm)
{
    const auto shape = AddRep(Triangle());
    void* block = nullptr;
    std::size_t size = 0;
    KARWriteSceneGraph(shape->Get3DRep(), block, size, static_cast<KARSettingCgr>(71));
    const std::string document = SavedWith(Base64(block, size));
    std::free(block);
    EXPECT_EQ(Found(document), Findings{"unreadable-stream Shapes/Rep3D"});
    const Diagnostics found = CheckText(document);
    ASSERT_NE(found.Find(Code::UnreadableStream), nullptr);
    EXPECT_NE(found.Find(Code::UnreadableStream)->text.find("DUMP_SCENEGRAPH_ONLY"),
              std::string::npos);
}

TEST_F(ShapeDocument, CheckWantsATriangleOfARepresentation)
{
    KAR3DBagRep* const bag = KAR3DBagRep::CreateRep();
    bag->AddChild(KAR3DPolylineRep::CreateRep({{0, 0, 0}, {1, 0, 0}}));
    bag->AddChild(KAR3DMeshRep::CreateRep({{0, 0, 0}}, {}));
    const auto shape = AddRep(bag);
    EXPECT_EQ(Found(Saved()), Findings{"rep-without-mesh Shapes/Rep3D"});
    bag->AddChild(Triangle());
    EXPECT_EQ(Found(Saved()), Findings{});
}

TEST_F(ShapeDocument, CheckWantsExactlyOneBodyOfAPlanarShape)
{
    AddOutline();
    constexpr int ShapeMode = 1;
    KARIGMKObject* const line = KARLineCurve::Create(KARMathLine({0, 0, 0}, {1, 0, 0}), 0.0, 1.0);
    for (const std::string& stream :
         {std::string(), std::string("AAAA"), StreamOf({KARBody::Create()}, ShapeMode + 1),
          StreamOf({line}, ShapeMode), StreamOf({KARBody::Create(), KARBody::Create()}, ShapeMode)})
        EXPECT_EQ(Found(SavedWith(stream)), Findings{"unreadable-stream Shapes/ShapeBody"});
    EXPECT_EQ(Found(SavedWith(StreamOf({KARBody::Create()}, ShapeMode))), Findings{});
}

TEST_F(ShapeDocument, CheckWantsABodyOfEachShape)
{
    File<KARMPShape>(KARMP3DRep::create(L"look"))->Set3DRep(Triangle());
    const auto outline = File<KARMPShape>(KARMPShapeBody::create(L"outline"));
    KARBody* const stored = KARBody::Create();
    outline->SetBody(stored);
    stored->Release();
    EXPECT_EQ(Found(Saved()),
              (Findings{"shape-without-body Shapes/Rep3D", "shape-without-body Shapes/ShapeBody"}));
}

} // namespace
