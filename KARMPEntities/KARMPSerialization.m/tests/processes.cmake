# What the writing side of the tree reads from the environment.
karmp_process_test(
    KARMPSerializationTests SerializerProcess.TheNameVariableForbidsNamesForTheRestOfTheProcess
    NO_MP_NAME_FOR_SERIALIZATION=0
)
karmp_process_test(KARMPSerializationTests SerializerProcess.TheNameVariableIsReadOnce)
karmp_process_test(KARMPSerializationTests SerializerProcess.AChildWithANumberCostsOneAllocation)
karmp_process_test(
    KARMPSerializationTests SerializerProcess.ThePrecisionVariableKeepsDoublesAsTheyAre
    SERIALIZATION_PRECISION=
)
karmp_process_test(KARMPSerializationTests NodeTextProcess.EqualNamesShareTheirStorage)
karmp_process_test(
    KARMPSerializationTests ValueReferencesProcess.BearTheirNamesWhereOtherReferencesHaveNone
    NO_MP_NAME_FOR_SERIALIZATION=0
)
karmp_process_test(
    KARMPSerializationTests ContentNamesProcess.AreWrittenWhereTheItemAsksForThem
    NO_MP_NAME_FOR_SERIALIZATION=0
)
karmp_process_test(KARMPSerializationTests ItemsProcess.AllocationThatFailsLeavesNoEmptyTable)
