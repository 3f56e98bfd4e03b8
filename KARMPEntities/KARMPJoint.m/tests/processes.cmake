# Names are left out of documents for a whole process.
karmp_process_test(
    KARMPJointTests JointTreeProcess.TheNamesOfBodiesAreWrittenAlsoWhereNamesAreLeftOut
    NO_MP_NAME_FOR_SERIALIZATION=1
)
karmp_process_test(
    KARMPJointTests PlanarJointTreeProcess.TheNamesOfBodiesAreWrittenAlsoWhereNamesAreLeftOut
    NO_MP_NAME_FOR_SERIALIZATION=1
)
