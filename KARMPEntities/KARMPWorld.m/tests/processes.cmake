karmp_process_test(
    KARMPWorldTests WorldWriterProcess.NamesNoGlobalsWhereReferencesBearNoNames
    NO_MP_NAME_FOR_SERIALIZATION=
)
karmp_process_test(
    KARMPWorldTests WorldReaderProcess.FilesInTheOrderOfTheDocumentWhenTheVariableIsSet
    ORDERED_DESERIALIZATION=
)
karmp_process_test(
    KARMPWorldTests WorldReaderProcess.FilesTheElementsOfARegistryAcrossTheirNames
    ORDERED_DESERIALIZATION=
)
karmp_process_test(
    KARMPWorldTests WorldReaderProcess.SkipsWhatIsDamagedInTheOrderOfTheDocument
    ORDERED_DESERIALIZATION=0
)
foreach(test IN ITEMS
        CountsFromThreeInEachWorld CountsOnlyWhenAnIdentifierIsMade
        GivesTheGlobalsOfAWorldFixedNumbers HasNoNumberUnderABasicWorldThatNothingExtends
        GoesOnFromTheCountOfACopiedWorld)
    karmp_process_test(KARMPWorldTests WorldIdentifierProcess.${test} NEW_MP_IDS=0)
endforeach()
target_compile_definitions(
    KARMPWorldTests PRIVATE KARMP_GOLDEN_FOLDER="${CMAKE_CURRENT_LIST_DIR}/golden"
)
