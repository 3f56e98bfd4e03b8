# What a failed check does is decided once a process.
set(suite FailedCheckProcess)
foreach(test IN ITEMS
        WithoutVariablesAReportHasNoVisibleEffect TheEnvironmentIsReadAtTheFirstReportOnly
        ACheckThatHoldsDoesNotReadTheEnvironment TheDevelopmentStageLogsAndGoesOn
        AFatalReportEndsTheProcessInTheDevelopmentStage AFatalReportHasNoEffectInANormalRun
        TheTextLeavesOutTheReportingCodeItself)
    karmp_process_test(KARMPEntityTests ${suite}.${test})
endforeach()
foreach(test IN ITEMS
        TheAbendVariableEndsTheProcessThroughFatalError TheAbendVariableEndsTheProcessForGood
        AMessageOnlyReportLeavesThePlaceOut TheAbendVariableOutweighsTheDevelopmentStage
        AListenerHearsAReportBeforeTheProcessEnds)
    karmp_process_test(KARMPEntityTests ${suite}.${test} ADL_ODT_IN=1)
endforeach()
karmp_process_test(
    KARMPEntityTests ${suite}.AnAbendVariableWithoutAValueCountsAsSet ADL_ODT_IN=
)
foreach(test IN ITEMS
        TheSilencingVariableOutweighsTheAbendVariable AListenerHearsASilencedReport)
    karmp_process_test(KARMPEntityTests ${suite}.${test} ADL_ODT_IN=1 CP_NO_ABEND=1)
endforeach()
karmp_process_test(
    KARMPEntityTests ${suite}.TheSilencingVariableOutweighsTheDevelopmentStage CP_NO_ABEND=1
)

karmp_process_test(KARMPEntityTests IdentifierProcess.CountsFromZeroInTheSerialForm ADL_ODT_OUT=)
karmp_process_test(KARMPEntityTests IdentifierProcess.IsTheEntityNameWhenNamesAreUsed
    MP_USE_NAME_FOR_ID=1 ADL_ODT_OUT=1)
karmp_process_test(KARMPEntityTests IdentifierProcess.OutsideAWorldKnowsTheGlobalsByTheirNames
    NEW_MP_IDS=0 MP_USE_NAME_FOR_ID=1)
foreach(test IN ITEMS
        IsEmptyToWhoAsksWhileItIsMade CountsInTheWorldThatTheEntityNames
        StaysEmptyWhereMakingItThrew)
    karmp_process_test(KARMPEntityTests IdentifierProcess.${test} NEW_MP_IDS=0)
endforeach()

karmp_process_test(
    KARMPEntityTests EntityTreeProcess.WritesOutputsOnceTheVariableIsSetAndKeepsToThat
    MOT_DUMP_OUTPUTS=0
)
karmp_process_test(
    KARMPEntityTests EntityTreeProcess.LeavesNamesOutButWritesTheAttribute
    NO_MP_NAME_FOR_SERIALIZATION=0
)
karmp_process_test(
    KARMPEntityTests EntityTreeProcess.DecidesOnNamesOfEntitiesAndOfReferencesEachAtItsFirst
    NO_MP_NAME_FOR_SERIALIZATION=0
)
