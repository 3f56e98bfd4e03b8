# The environment is read when the library is loaded.
karmp_process_test(
    KARMPEntitiesServicesTests DumpPathProcess.IsThatOfTheTimeOfLoading MP_DUMP_PATH=at/load
)
karmp_process_test(KARMPEntitiesServicesTests DumpPathProcess.IsNullWithoutTheVariable)
