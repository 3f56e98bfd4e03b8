# What documents hold of representations is decided when the library is loaded.
karmp_process_test(
    KARMPShapeTests Rep3DProcess.IsLeftOutOfDocumentsAndReadingThemFails DONT_SERIALIZE_REP=
)
karmp_process_test(
    KARMPShapeTests Rep3DProcess.IsWrittenAndReadInThePlainForm DUMP_SCENEGRAPH_ONLY=0
)
