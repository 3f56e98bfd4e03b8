# Whether references bear names is decided once a process.
karmp_process_test(
    KARMPValueTests
    ReferenceNameProcess.FamiliesLeaveNamesOutWhereValueReferencesKeepThem
    NO_MP_NAME_FOR_SERIALIZATION=
)
