karmp_process_test(
    KARMPConstraintTests ConstraintNamesProcess.ReferencesHaveNoNameWhenNamesAreLeftOut
    NO_MP_NAME_FOR_SERIALIZATION=1
)
