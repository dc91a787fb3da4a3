// The umbrella header: every public header of nvshared. A host may include
// this one or just the headers it needs.
#ifndef NVSHARED_NVSHARED_H_
#define NVSHARED_NVSHARED_H_

#include "nvshared/export.h"
#include "nvshared/status.h"
#include "nvshared/version.h"  // generated into the build tree

// Market model.
#include "nvshared/market/core_product_id.h"
#include "nvshared/market/exchange_names.h"
#include "nvshared/market/market_types.h"
#include "nvshared/market/market_utils.h"
#include "nvshared/market/series_compare.h"

// Contract names.
#include "nvshared/naming/archiver.h"
#include "nvshared/naming/binary_archiver.h"
#include "nvshared/naming/format_contract_config.h"
#include "nvshared/naming/formatted_name_data.h"
#include "nvshared/naming/series_name_formatter.h"
#include "nvshared/naming/update_hint.h"

// Application services.
#include "nvshared/app/app_string_loader.h"
#include "nvshared/app/error_log.h"
#include "nvshared/app/exception_report.h"
#include "nvshared/app/module.h"

// Platform: the core's types and lookups over the reference data.
#include "nvshared/platform/core/agile_enums.h"
#include "nvshared/platform/core/char_ptr_wrapper.h"
#include "nvshared/platform/core/consumer.h"
#include "nvshared/platform/core/sys_rename_process.h"
#include "nvshared/platform/core/core_class.h"
#include "nvshared/platform/core/date_time.h"
#include "nvshared/platform/core/ids.h"
#include "nvshared/platform/core/legs.h"
#include "nvshared/platform/core/market_table.h"
#include "nvshared/platform/core/opaque_data_message.h"
#include "nvshared/platform/core/reference_data.h"

// Platform: logger, handler chain, diagnostics, dates.
#include "nvshared/platform/log/file_sink.h"
#include "nvshared/platform/log/log_sink.h"
#include "nvshared/platform/log/logger.h"
#include "nvshared/platform/log/memory_sink.h"
#include "nvshared/platform/utils/agile_streamable.h"
#include "nvshared/platform/utils/data_buffer.h"
#include "nvshared/platform/utils/dm_utils.h"
#include "nvshared/platform/utils/exception_handler.h"
#include "nvshared/platform/utils/opaque_capture.h"
#include "nvshared/platform/utils/udp_date_time.h"

// User-defined prices.
#include "nvshared/udp/custom_price_model.h"
#include "nvshared/udp/price_model_sdk.h"
#include "nvshared/udp/udp_data.h"
#include "nvshared/udp/udp_enums.h"
#include "nvshared/udp/udp_key_value.h"
#include "nvshared/udp/udp_price.h"
#include "nvshared/udp/udp_ytm_calc.h"

// Gateway login configuration, with the settings store it reads.
#include "nvshared/mgt/mgt.h"
#include "nvshared/mgt/mgt_ini.h"
#include "nvshared/platform/utils/registry_mgr.h"

// Defaults selection: keys, matching and the default records, with the
// utility library's date and randomizer they use.
#include "nvshared/defaults/cd_criteria.h"
#include "nvshared/defaults/criteria_key.h"
#include "nvshared/defaults/default_key.h"
#include "nvshared/defaults/defaults_entry_iterator.h"
#include "nvshared/defaults/defaults_table.h"
#include "nvshared/defaults/od_criteria.h"
#include "nvshared/defaults/rr_criteria.h"
#include "nvshared/platform/utils/dv_randomizer.h"
#include "nvshared/platform/utils/nv_date.h"

// Users and risk.
#include "nvshared/risk/limit_info.h"
#include "nvshared/risk/mgt_info.h"
#include "nvshared/risk/trader_info.h"
#include "nvshared/risk/user_info.h"

// Binary formats: the tagged object stream and its records.
#include "nvshared/messaging/connection_key.h"
#include "nvshared/messaging/convert_gmt.h"
#include "nvshared/messaging/server_version_request_params.h"
#include "nvshared/messaging/spread_info.h"
#include "nvshared/messaging/xstream_trace.h"
#include "nvshared/messaging/xstreamable.h"

// The core stream: flat buffer, Protocol back end, streamables and their
// factories.
#include "nvshared/platform/stream/fast_stream_buffer.h"
#include "nvshared/platform/stream/protocol.h"
#include "nvshared/platform/stream/stream.h"
#include "nvshared/platform/stream/stream_exceptions.h"
#include "nvshared/platform/stream/streamable.h"
#include "nvshared/platform/stream/var_int.h"
#include "nvshared/platform/stream/via_factory.h"

// Router messages over the core stream, and their registration with a
// router.
#include "nvshared/messaging/common_messages.h"
#include "nvshared/messaging/comparable.h"
#include "nvshared/messaging/impersonate_user_request.h"
#include "nvshared/messaging/impersonate_user_response.h"
#include "nvshared/messaging/impersonation_data.h"
#include "nvshared/messaging/internal_messages.h"
#include "nvshared/messaging/message_router.h"
#include "nvshared/messaging/message_router_request.h"
#include "nvshared/messaging/message_router_response.h"
#include "nvshared/messaging/opaque_blocks.h"
#include "nvshared/messaging/opaque_messages.h"
#include "nvshared/messaging/server_version_request.h"
#include "nvshared/messaging/server_version_response.h"

#endif  // NVSHARED_NVSHARED_H_
