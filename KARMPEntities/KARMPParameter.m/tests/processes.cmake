# Whether an entity writes the outputs that it lists is decided once a process.
karmp_process_test(
    KARMPParameterTests
    AttributeWorldProcess.KeepsParametersAndStatesAloneWithoutTheVariable
)
karmp_process_test(
    KARMPParameterTests AttributeWorldProcess.KeepsOutputsWithTheVariable MOT_DUMP_OUTPUTS=0
)
