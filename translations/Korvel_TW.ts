<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_TW">
<context>
    <name>ADBCommandDialog</name>
    <message>
        <source>ADB Command</source>
        <translation>ADB 指令</translation>
    </message>
    <message>
        <source>Enter ADB command, for example:
shell ls
shell ps</source>
        <translation>輸入 ADB 指令，例如：
shell ls
shell ps</translation>
    </message>
    <message>
        <source>Command Output</source>
        <translation>指令輸出</translation>
    </message>
    <message>
        <source>Command output will be displayed here...</source>
        <translation>指令輸出將顯示在這裡...</translation>
    </message>
    <message>
        <source>Execute</source>
        <translation>執行</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>清除</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>關閉</translation>
    </message>
</context>
<context>
    <name>ADBRestartDialog</name>
    <message>
        <source>Restart ADB Server</source>
        <translation>重新啟動 ADB 服務</translation>
    </message>
    <message>
        <source>ADB server restarted successfully</source>
        <translation>ADB 服務已成功重新啟動</translation>
    </message>
    <message>
        <source>Failed to restart ADB server</source>
        <translation>重新啟動 ADB 服務失敗</translation>
    </message>
    <message>
        <source>Restarting ADB will disconnect all connected devices.</source>
        <translation>重新啟動 ADB 將中斷所有已連線的裝置。</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Restart</source>
        <translation>重新啟動</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>關閉</translation>
    </message>
</context>
<context>
    <name>AboutDialog</name>
    <message>
        <source>About APP</source>
        <translation>關於應用</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>版本</translation>
    </message>
    <message>
        <source>Visit our website for more information and instructions.</source>
        <translation>造訪我們的網站以取得更多資訊與使用說明。</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>關閉</translation>
    </message>
</context>
<context>
    <name>AdbJob</name>
    <message>
        <source>Cancelled</source>
        <translation>已取消</translation>
    </message>
    <message numerus="yes">
        <source>No answer for %n second(s)</source>
        <translation>
            <numerusform>%n 秒無回應</numerusform>
        </translation>
    </message>
    <message>
        <source>Failed to start adb: %1</source>
        <translation>無法啟動 adb：%1</translation>
    </message>
</context>
<context>
    <name>AdbResult</name>
    <message>
        <source>adb ended abnormally</source>
        <translation>adb 異常結束</translation>
    </message>
    <message>
        <source>The package manager gave no answer</source>
        <translation>套件管理器沒有回應</translation>
    </message>
    <message>
        <source>adb exited with code %1</source>
        <translation>adb 結束，代碼 %1</translation>
    </message>
</context>
<context>
    <name>AdbTask</name>
    <message>
        <source>Cancelled</source>
        <translation>已取消</translation>
    </message>
</context>
<context>
    <name>AppSettingsDialog</name>
    <message>
        <source>Application Settings</source>
        <translation>應用設定</translation>
    </message>
    <message>
        <source>Video save path</source>
        <translation>影片儲存路徑</translation>
    </message>
    <message>
        <source>Select video save path</source>
        <translation>選擇影片儲存路徑</translation>
    </message>
    <message>
        <source>Screenshot save path</source>
        <translation>截圖儲存路徑</translation>
    </message>
    <message>
        <source>Select screenshot save path</source>
        <translation>選擇截圖儲存路徑</translation>
    </message>
    <message>
        <source>KeyMapping save path</source>
        <translation>按鍵映射儲存路徑</translation>
    </message>
    <message>
        <source>Select KeyMapping save path</source>
        <translation>選擇按鍵映射儲存路徑</translation>
    </message>
    <message>
        <source>Common Phrase save path</source>
        <translation>常用語儲存路徑</translation>
    </message>
    <message>
        <source>Select Common Phrase save path</source>
        <translation>選擇常用語儲存路徑</translation>
    </message>
    <message>
        <source>Device Nickname save path</source>
        <translation>裝置暱稱儲存路徑</translation>
    </message>
    <message>
        <source>Select Device Nickname save path</source>
        <translation>選擇裝置暱稱儲存路徑</translation>
    </message>
    <message>
        <source>Device Group save path</source>
        <translation>裝置群組儲存路徑</translation>
    </message>
    <message>
        <source>Select Device Group save path</source>
        <translation>選擇裝置群組儲存路徑</translation>
    </message>
    <message>
        <source>Success</source>
        <translation>成功</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>語言</translation>
    </message>
    <message>
        <source>Browse...</source>
        <translation>瀏覽...</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>儲存</translation>
    </message>
    <message>
        <source>adb processes at once</source>
        <translation>同時執行的 adb 行程數</translation>
    </message>
    <message>
        <source>Saved. The changes apply at once.</source>
        <translation>已儲存，變更立即生效。</translation>
    </message>
    <message>
        <source>Please restart the application to apply the changes.</source>
        <translation>請重新啟動應用程式以套用變更。</translation>
    </message>
</context>
<context>
    <name>AudioDecoder</name>
    <message>
        <source>Sound cannot be played: %1</source>
        <translation>無法播放聲音：%1</translation>
    </message>
    <message>
        <source>no Opus decoder in this FFmpeg</source>
        <translation>此 FFmpeg 中沒有 Opus 解碼器</translation>
    </message>
    <message>
        <source>out of memory for the Opus decoder</source>
        <translation>Opus 解碼器記憶體不足</translation>
    </message>
    <message>
        <source>the Opus decoder did not open: %1 (error code: %2)</source>
        <translation>Opus 解碼器無法開啟：%1（錯誤代碼：%2）</translation>
    </message>
</context>
<context>
    <name>AudioDemuxer</name>
    <message>
        <source>Audio is not available on this phone (Android 11 or later)</source>
        <translation>此手機無法提供音訊（需要 Android 11 或更新版本）</translation>
    </message>
    <message>
        <source>Audio capture failed on this phone</source>
        <translation>此手機音訊擷取失敗</translation>
    </message>
</context>
<context>
    <name>Autojs</name>
    <message>
        <source>Failed to connect to AutoJS server</source>
        <translation>無法連線 AutoJS 服務</translation>
    </message>
    <message>
        <source>Failed to open AutoJS script file</source>
        <translation>無法開啟 AutoJS 腳本檔案</translation>
    </message>
    <message>
        <source>AutoJS script started</source>
        <translation>AutoJS 腳本已啟動</translation>
    </message>
</context>
<context>
    <name>BigDeviceView</name>
    <message>
        <source>Big Screen</source>
        <translation>大螢幕</translation>
    </message>
    <message>
        <source>Click To Start</source>
        <translation>點擊啟動</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>啟動</translation>
    </message>
</context>
<context>
    <name>CommonPhrasesDialog</name>
    <message>
        <source>Common Phrases Manager</source>
        <translation>常用語管理</translation>
    </message>
    <message>
        <source>Category:</source>
        <translation>分類：</translation>
    </message>
    <message>
        <source>Enter category name...</source>
        <translation>輸入分類名稱...</translation>
    </message>
    <message>
        <source>New Category</source>
        <translation>新增分類</translation>
    </message>
    <message>
        <source>Update</source>
        <translation>更新</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>新增</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>編輯</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>刪除</translation>
    </message>
    <message>
        <source>Are you sure you want to delete category?</source>
        <translation>確定要刪除該分類嗎？</translation>
    </message>
    <message>
        <source>Phrases:</source>
        <translation>常用語：</translation>
    </message>
    <message>
        <source>Enter phrase text...</source>
        <translation>輸入常用語內容...</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>說明</translation>
    </message>
    <message>
        <source>New</source>
        <translation>新增</translation>
    </message>
    <message>
        <source>Are you sure you want to delete the phrase?</source>
        <translation>確定要刪除該常用語嗎？</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>關閉</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>儲存</translation>
    </message>
</context>
<context>
    <name>ControlButtons</name>
    <message>
        <source>Home</source>
        <translation>主畫面</translation>
    </message>
    <message>
        <source>Task List</source>
        <translation>工作清單</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>返回</translation>
    </message>
    <message>
        <source>Swipe Up</source>
        <translation>向上滑動</translation>
    </message>
    <message>
        <source>Swipe Down</source>
        <translation>向下滑動</translation>
    </message>
    <message>
        <source>Swipe Left</source>
        <translation>向左滑動</translation>
    </message>
    <message>
        <source>Swipe Right</source>
        <translation>向右滑動</translation>
    </message>
    <message>
        <source>Rotate Screen</source>
        <translation>旋轉螢幕</translation>
    </message>
    <message>
        <source>Screenshot</source>
        <translation>截圖</translation>
    </message>
    <message>
        <source>Stop Recording</source>
        <translation>停止錄製</translation>
    </message>
    <message>
        <source>Record Video</source>
        <translation>錄製影片</translation>
    </message>
    <message>
        <source>Select Phrase</source>
        <translation>選擇常用語</translation>
    </message>
    <message>
        <source>Volume Up</source>
        <translation>音量加</translation>
    </message>
    <message>
        <source>Volume Down</source>
        <translation>音量減</translation>
    </message>
    <message>
        <source>Upload File</source>
        <translation>上傳檔案</translation>
    </message>
    <message>
        <source>Select File</source>
        <translation>選擇檔案</translation>
    </message>
    <message>
        <source>All files (*.*)</source>
        <translation>所有檔案 (*.*)</translation>
    </message>
    <message>
        <source>KeyMapping: %1</source>
        <translation>按鍵映射：%1</translation>
    </message>
    <message>
        <source>Key Mapping</source>
        <translation>按鍵映射</translation>
    </message>
    <message>
        <source>Screen Position</source>
        <translation>螢幕座標</translation>
    </message>
    <message>
        <source>Install APK</source>
        <translation>安裝 APK</translation>
    </message>
    <message>
        <source>APK</source>
        <translation>APK</translation>
    </message>
    <message>
        <source>Select APK File</source>
        <translation>選擇 APK 檔案</translation>
    </message>
    <message>
        <source>APK files (*.apk)</source>
        <translation>APK 檔案 (*.apk)</translation>
    </message>
    <message>
        <source>Stop AutoJS</source>
        <translation>停止 AutoJS</translation>
    </message>
    <message>
        <source>Run AutoJS</source>
        <translation>執行 AutoJS</translation>
    </message>
    <message>
        <source>Select AutoJS Script</source>
        <translation>選擇 AutoJS 腳本</translation>
    </message>
    <message>
        <source>autojs files (*.js)</source>
        <translation>autojs 檔案 (*.js)</translation>
    </message>
    <message>
        <source>Run ADB Command</source>
        <translation>執行 ADB 指令</translation>
    </message>
    <message>
        <source>ADB</source>
        <translation>ADB</translation>
    </message>
    <message>
        <source>Screen On</source>
        <translation>開啟螢幕</translation>
    </message>
    <message>
        <source>Screen Off</source>
        <translation>關閉螢幕</translation>
    </message>
    <message>
        <source>Audio Enabled</source>
        <translation>音訊已開啟</translation>
    </message>
    <message>
        <source>Audio Disabled</source>
        <translation>音訊已關閉</translation>
    </message>
    <message>
        <source>Reboot</source>
        <translation>重新啟動</translation>
    </message>
    <message>
        <source>Shutdown</source>
        <translation>關機</translation>
    </message>
</context>
<context>
    <name>Device</name>
    <message>
        <source>scrcpy-server %1 is missing at %2</source>
        <translation>scrcpy-server %1 不存在於 %2</translation>
    </message>
    <message>
        <source>Audio Enabled, Need Reconnect</source>
        <translation>音訊已啟用，需要重新連線</translation>
    </message>
    <message>
        <source>Audio Disabled, Need Reconnect</source>
        <translation>音訊已停用，需要重新連線</translation>
    </message>
    <message>
        <source>Not Connected</source>
        <translation>未連線</translation>
    </message>
    <message>
        <source>Screenshot Saved</source>
        <translation>截圖已儲存</translation>
    </message>
    <message>
        <source>Screenshot Failed</source>
        <translation>截圖失敗</translation>
    </message>
    <message>
        <source>KeyMapping Profile: %1</source>
        <translation>按鍵映射方案：%1</translation>
    </message>
    <message>
        <source>KeyMapping Disabled</source>
        <translation>按鍵映射已停用</translation>
    </message>
    <message>
        <source>Failed to start: %1</source>
        <translation>啟動失敗：%1</translation>
    </message>
    <message>
        <source>The phone&apos;s server stopped: %1</source>
        <translation>手機端服務已停止：%1</translation>
    </message>
    <message>
        <source>Back online, starting again</source>
        <translation>已重新上線，正在重新啟動</translation>
    </message>
</context>
<context>
    <name>DeviceActions</name>
    <message>
        <source>Not Connected</source>
        <translation>未連線</translation>
    </message>
    <message>
        <source>Failed to tcpip</source>
        <translation>切換 tcpip 失敗</translation>
    </message>
    <message>
        <source>WiFi connection enabled</source>
        <translation>WiFi 連線已啟用</translation>
    </message>
    <message>
        <source>Failed to enable <byte value="xd"/> WiFi connection</source>
        <translation>無法啟用 <byte value="xd"/> WiFi 連線</translation>
    </message>
    <message>
        <source>Failed to disconnect WiFi</source>
        <translation>中斷 WiFi 失敗</translation>
    </message>
    <message>
        <source>USB connection enabled</source>
        <translation>已切換到 USB 連線</translation>
    </message>
    <message>
        <source>Failed to switch to USB</source>
        <translation>切換到 USB 失敗</translation>
    </message>
    <message>
        <source>Installing APK</source>
        <translation>正在安裝 APK</translation>
    </message>
    <message>
        <source>APK installed</source>
        <translation>APK 已安裝</translation>
    </message>
    <message>
        <source>APK installation failed</source>
        <translation>APK 安裝失敗</translation>
    </message>
    <message>
        <source>Uploading File</source>
        <translation>正在上傳檔案</translation>
    </message>
    <message>
        <source>File uploaded</source>
        <translation>檔案已上傳</translation>
    </message>
    <message>
        <source>File upload failed</source>
        <translation>檔案上傳失敗</translation>
    </message>
</context>
<context>
    <name>DeviceGroupManager</name>
    <message>
        <source>Default Group</source>
        <translation>預設群組</translation>
    </message>
</context>
<context>
    <name>DeviceGroupManagerDialog</name>
    <message>
        <source>Device Group Manager</source>
        <translation>裝置群組管理</translation>
    </message>
    <message>
        <source>Group name cannot be empty</source>
        <translation>群組名稱不能為空</translation>
    </message>
    <message>
        <source>Group name already exists</source>
        <translation>群組名稱已存在</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>錯誤</translation>
    </message>
    <message>
        <source>Devices</source>
        <translation>裝置</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>編輯</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>刪除</translation>
    </message>
    <message>
        <source>No device groups</source>
        <translation>沒有裝置群組</translation>
    </message>
    <message>
        <source>Group Name</source>
        <translation>群組名稱</translation>
    </message>
    <message>
        <source>Enter group name...</source>
        <translation>輸入群組名稱...</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>儲存</translation>
    </message>
    <message>
        <source>Create</source>
        <translation>建立</translation>
    </message>
    <message>
        <source>New Group</source>
        <translation>新增群組</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>關閉</translation>
    </message>
    <message>
        <source>Are you sure you want to delete group &quot;%1&quot;?</source>
        <translation>確定要刪除群組「%1」嗎？</translation>
    </message>
    <message>
        <source>Its phone is removed with it.</source>
        <translation>該群組的手機將一併移除。</translation>
    </message>
    <message>
        <source>Its %1 phones are removed with it.</source>
        <translation>該群組的 %1 支手機將一併移除。</translation>
    </message>
</context>
<context>
    <name>DeviceInfoDialog</name>
    <message>
        <source>Device Information</source>
        <translation>裝置資訊</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>未知</translation>
    </message>
    <message>
        <source>No Custom Name</source>
        <translation>無自訂名稱</translation>
    </message>
    <message>
        <source>Basic Information</source>
        <translation>基本資訊</translation>
    </message>
    <message>
        <source>Device Model:</source>
        <translation>裝置型號：</translation>
    </message>
    <message>
        <source>Manufacturer:</source>
        <translation>製造商：</translation>
    </message>
    <message>
        <source>Android Version:</source>
        <translation>Android 版本：</translation>
    </message>
    <message>
        <source>Serial Number:</source>
        <translation>序號：</translation>
    </message>
    <message>
        <source>Hardware Information</source>
        <translation>硬體資訊</translation>
    </message>
    <message>
        <source>Screen Size:</source>
        <translation>螢幕尺寸：</translation>
    </message>
    <message>
        <source>Memory Size:</source>
        <translation>記憶體大小：</translation>
    </message>
    <message>
        <source>Network Information</source>
        <translation>網路資訊</translation>
    </message>
    <message>
        <source>Operator:</source>
        <translation>電信業者：</translation>
    </message>
    <message>
        <source>Country / Region Code:</source>
        <translation>國家/地區代碼：</translation>
    </message>
    <message>
        <source>Connection Information</source>
        <translation>連線資訊</translation>
    </message>
    <message>
        <source>ADB TCP Port:</source>
        <translation>ADB TCP 連接埠：</translation>
    </message>
    <message>
        <source>USB Configuration:</source>
        <translation>USB 設定：</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>關閉</translation>
    </message>
</context>
<context>
    <name>DeviceList</name>
    <message>
        <source>Device Groups</source>
        <translation>裝置群組</translation>
    </message>
    <message>
        <source>No device groups</source>
        <translation>沒有裝置群組</translation>
    </message>
    <message>
        <source>name</source>
        <translation>名稱</translation>
    </message>
    <message>
        <source>serial</source>
        <translation>序號</translation>
    </message>
    <message>
        <source>connection type</source>
        <translation>連線類型</translation>
    </message>
    <message>
        <source>Collapse</source>
        <translation>收合</translation>
    </message>
    <message>
        <source>Expand</source>
        <translation>展開</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>啟動</translation>
    </message>
    <message>
        <source>Remove Device</source>
        <translation>移除裝置</translation>
    </message>
</context>
<context>
    <name>DeviceMenu</name>
    <message>
        <source>Naming Device</source>
        <translation>裝置命名</translation>
    </message>
    <message>
        <source>Enable WiFi Connection</source>
        <translation>啟用 WiFi 連線</translation>
    </message>
    <message>
        <source>Disconnect WiFi</source>
        <translation>中斷 WiFi</translation>
    </message>
    <message>
        <source>Device Information</source>
        <translation>裝置資訊</translation>
    </message>
    <message>
        <source>Move to Group</source>
        <translation>移至群組</translation>
    </message>
</context>
<context>
    <name>DeviceRenameDialog</name>
    <message>
        <source>Rename Device</source>
        <translation>重新命名裝置</translation>
    </message>
    <message>
        <source>Serial Number:</source>
        <translation>序號：</translation>
    </message>
    <message>
        <source>Current Name:</source>
        <translation>目前名稱：</translation>
    </message>
    <message>
        <source>No Custom Name</source>
        <translation>無自訂名稱</translation>
    </message>
    <message>
        <source>New Name:</source>
        <translation>新名稱：</translation>
    </message>
    <message>
        <source>Enter new device name</source>
        <translation>輸入新的裝置名稱</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Confirm</source>
        <translation>確認</translation>
    </message>
</context>
<context>
    <name>DeviceScanDialog</name>
    <message>
        <source>Scan Devices</source>
        <translation>掃描裝置</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>錯誤</translation>
    </message>
    <message>
        <source>Target Group:</source>
        <translation>目標群組：</translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation>重新整理</translation>
    </message>
    <message>
        <source>Select</source>
        <translation>選擇</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>類型</translation>
    </message>
    <message>
        <source>Nickname</source>
        <translation>暱稱</translation>
    </message>
    <message>
        <source>Serial Number</source>
        <translation>序號</translation>
    </message>
    <message>
        <source>Product</source>
        <translation>產品</translation>
    </message>
    <message>
        <source>No devices found</source>
        <translation>未發現裝置</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>全選</translation>
    </message>
    <message>
        <source>Add to Group</source>
        <translation>加入群組</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>關閉</translation>
    </message>
</context>
<context>
    <name>DeviceView</name>
    <message>
        <source>Big Screen</source>
        <translation>大螢幕</translation>
    </message>
    <message>
        <source>Click To Start</source>
        <translation>點擊啟動</translation>
    </message>
    <message>
        <source>On Big Screen</source>
        <translation>正在大螢幕顯示</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>啟動</translation>
    </message>
    <message>
        <source>Remove Device</source>
        <translation>移除裝置</translation>
    </message>
    <message>
        <source>Starting…</source>
        <translation>正在啟動…</translation>
    </message>
    <message>
        <source>Offline</source>
        <translation>離線</translation>
    </message>
    <message>
        <source>since %1</source>
        <translation>自 %1 起</translation>
    </message>
</context>
<context>
    <name>FilePicker</name>
    <message>
        <source>Select File</source>
        <translation>選擇檔案</translation>
    </message>
    <message>
        <source>All files (*.*)</source>
        <translation>所有檔案 (*.*)</translation>
    </message>
</context>
<context>
    <name>GroupActions</name>
    <message>
        <source>&quot;%1&quot; did not start: &quot;%2&quot; is still running. Cancel it or wait for it to end.</source>
        <translation>「%1」未啟動：「%2」仍在執行。請取消它或等待其結束。</translation>
    </message>
    <message>
        <source>Screenshot</source>
        <translation>截圖</translation>
    </message>
    <message>
        <source>Install APK</source>
        <translation>安裝 APK</translation>
    </message>
    <message>
        <source>Upload File</source>
        <translation>上傳檔案</translation>
    </message>
    <message>
        <source>Run AutoJS</source>
        <translation>執行 AutoJS</translation>
    </message>
    <message>
        <source>ADB Command</source>
        <translation>ADB 指令</translation>
    </message>
</context>
<context>
    <name>GroupOperation</name>
    <message>
        <source>queued</source>
        <translation>排隊中</translation>
    </message>
    <message>
        <source>running</source>
        <translation>執行中</translation>
    </message>
    <message>
        <source>done</source>
        <translation>完成</translation>
    </message>
    <message>
        <source>failed</source>
        <translation>失敗</translation>
    </message>
    <message>
        <source>cancelled</source>
        <translation>已取消</translation>
    </message>
    <message>
        <source>timed out</source>
        <translation>逾時</translation>
    </message>
    <message>
        <source>ADB Command</source>
        <translation>ADB 命令</translation>
    </message>
    <message>
        <source>The phone has left the group</source>
        <translation>手機已離開群組</translation>
    </message>
    <message>
        <source>The phone did not answer</source>
        <translation>手機沒有回應</translation>
    </message>
    <message numerus="yes">
        <source>%n done</source>
        <translation>
            <numerusform>%n 個完成</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n failed</source>
        <translation>
            <numerusform>%n 個失敗</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n timed out</source>
        <translation>
            <numerusform>%n 個逾時</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n cancelled</source>
        <translation>
            <numerusform>%n 個已取消</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n running</source>
        <translation>
            <numerusform>%n 個執行中</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n queued</source>
        <translation>
            <numerusform>%n 個排隊中</numerusform>
        </translation>
    </message>
    <message>
        <source>, </source>
        <comment>between the counts of the summary line</comment>
        <translation>，</translation>
    </message>
</context>
<context>
    <name>GroupOperationDialog</name>
    <message>
        <source>Close</source>
        <translation>關閉</translation>
    </message>
</context>
<context>
    <name>GroupOperationView</name>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Retry failed</source>
        <translation>重試失敗項目</translation>
    </message>
    <message>
        <source>Copy report</source>
        <translation>複製報告</translation>
    </message>
</context>
<context>
    <name>GroupSettingsDialog</name>
    <message>
        <source>Group Settings</source>
        <translation>群組設定</translation>
    </message>
    <message>
        <source>General Settings</source>
        <translation>一般設定</translation>
    </message>
    <message>
        <source>Group Control Delay:</source>
        <translation>群控延遲：</translation>
    </message>
    <message>
        <source> s</source>
        <translation> 秒</translation>
    </message>
    <message>
        <source>Show Control Buttons:</source>
        <translation>顯示控制按鈕：</translation>
    </message>
    <message>
        <source>Enable Sound Output:</source>
        <translation>啟用聲音輸出：</translation>
    </message>
    <message>
        <source>Android 11 or later</source>
        <translation>Android 11 或更新版本</translation>
    </message>
    <message>
        <source>Need Reconnect</source>
        <translation>需要重新連線</translation>
    </message>
    <message>
        <source>Small Window Settings</source>
        <translation>小視窗設定</translation>
    </message>
    <message>
        <source>Width:</source>
        <translation>寬度：</translation>
    </message>
    <message>
        <source> px</source>
        <translation> 像素</translation>
    </message>
    <message>
        <source>Resolution:</source>
        <translation>解析度：</translation>
    </message>
    <message>
        <source>Frame Rate:</source>
        <translation>幀率：</translation>
    </message>
    <message>
        <source> fps</source>
        <translation> 幀/秒</translation>
    </message>
    <message>
        <source>Bit Rate:</source>
        <translation>位元率：</translation>
    </message>
    <message>
        <source> Mbps</source>
        <translation> Mbps</translation>
    </message>
    <message>
        <source>Big Window Settings</source>
        <translation>大視窗設定</translation>
    </message>
    <message>
        <source>Big View Width:</source>
        <translation>大螢幕寬度：</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>儲存</translation>
    </message>
</context>
<context>
    <name>JsonFile</name>
    <message>
        <source>%1 could not be read and could not be moved aside. Korvel will not save over it; changes are kept only until Korvel closes.</source>
        <translation>無法讀取 %1，也無法將其移到一旁。Korvel 不會覆寫它；變更只保留到 Korvel 關閉。</translation>
    </message>
    <message>
        <source>%1 could not be read. It was kept as %2 and Korvel started without it.</source>
        <translation>無法讀取 %1。它已保留為 %2，Korvel 在沒有它的情況下啟動。</translation>
    </message>
    <message>
        <source>%1 could not be saved. Changes are kept only until Korvel closes.</source>
        <translation>無法儲存 %1。變更只保留到 Korvel 關閉。</translation>
    </message>
    <message>
        <source>Parts of %1 could not be read and were left out. The file as it was is kept as %2.</source>
        <translation>%1 的部分內容無法讀取，已被略去。原來的檔案已保留為 %2。</translation>
    </message>
    <message>
        <source>Parts of %1 could not be read and a copy could not be kept. Korvel will not save over it; changes are kept only until Korvel closes.</source>
        <translation>%1 的部分內容無法讀取，也無法保留副本。Korvel 不會覆寫它；變更只保留到 Korvel 關閉。</translation>
    </message>
</context>
<context>
    <name>KVAlert</name>
    <message>
        <source>Alert</source>
        <translation>提示</translation>
    </message>
</context>
<context>
    <name>KVConfirm</name>
    <message>
        <source>Delete</source>
        <translation>刪除</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
<context>
    <name>KeyMapProfilePicker</name>
    <message>
        <source>Select KeyMapping Profile</source>
        <translation>選擇按鍵映射方案</translation>
    </message>
    <message>
        <source>No KeyMap</source>
        <translation>不使用按鍵映射</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>關閉</translation>
    </message>
</context>
<context>
    <name>KeyMappingDialog</name>
    <message>
        <source>Key Mapping Settings</source>
        <translation>按鍵映射設定</translation>
    </message>
    <message>
        <source>Press a key...</source>
        <translation>請按一個鍵...</translation>
    </message>
    <message>
        <source>Mapping Profile:</source>
        <translation>映射方案：</translation>
    </message>
    <message>
        <source>New</source>
        <translation>新增</translation>
    </message>
    <message>
        <source>Delete Profile</source>
        <translation>刪除方案</translation>
    </message>
    <message>
        <source>Are you sure you want to delete profile</source>
        <translation>確定要刪除方案</translation>
    </message>
    <message>
        <source>Create New Profile</source>
        <translation>新增方案</translation>
    </message>
    <message>
        <source>Profile Name:</source>
        <translation>方案名稱：</translation>
    </message>
    <message>
        <source>Enter profile name...</source>
        <translation>輸入方案名稱...</translation>
    </message>
    <message>
        <source>Create</source>
        <translation>建立</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Touch</source>
        <translation>點擊</translation>
    </message>
    <message>
        <source>Swipe</source>
        <translation>滑動</translation>
    </message>
    <message>
        <source>Add New Mapping</source>
        <translation>新增映射</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>關閉</translation>
    </message>
    <message>
        <source>Add New Key Mapping</source>
        <translation>新增按鍵映射</translation>
    </message>
    <message>
        <source>Edit Key Mapping</source>
        <translation>編輯按鍵映射</translation>
    </message>
    <message>
        <source>Edit Swipe Mapping</source>
        <translation>編輯滑動映射</translation>
    </message>
    <message>
        <source>Key:</source>
        <translation>按鍵：</translation>
    </message>
    <message>
        <source>Type:</source>
        <translation>類型：</translation>
    </message>
    <message>
        <source>X:</source>
        <translation>X：</translation>
    </message>
    <message>
        <source>Y:</source>
        <translation>Y：</translation>
    </message>
    <message>
        <source>Count:</source>
        <translation>次數：</translation>
    </message>
    <message>
        <source>(1-10)</source>
        <translation>(1-10)</translation>
    </message>
    <message>
        <source>Start X:</source>
        <translation>起點 X：</translation>
    </message>
    <message>
        <source>Start Y:</source>
        <translation>起點 Y：</translation>
    </message>
    <message>
        <source>End X:</source>
        <translation>終點 X：</translation>
    </message>
    <message>
        <source>End Y:</source>
        <translation>終點 Y：</translation>
    </message>
    <message>
        <source>Duration(ms):</source>
        <translation>時長(毫秒)：</translation>
    </message>
    <message>
        <source>Duration:</source>
        <translation>時長：</translation>
    </message>
    <message>
        <source>(50-2000ms)</source>
        <translation>(50-2000毫秒)</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>起點</translation>
    </message>
    <message>
        <source>End</source>
        <translation>終點</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>儲存</translation>
    </message>
    <message>
        <source>Phone:</source>
        <translation>手機：</translation>
    </message>
    <message>
        <source>A profile with this name already exists.</source>
        <translation>已存在同名方案。</translation>
    </message>
</context>
<context>
    <name>KeyMappingPreview</name>
    <message>
        <source>Start a phone of the current group to see its screen here.</source>
        <translation>啟動目前群組中的一台手機即可在此看到其螢幕。</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>啟動</translation>
    </message>
    <message>
        <source>End</source>
        <translation>終點</translation>
    </message>
</context>
<context>
    <name>KeyMappingProfile</name>
    <message>
        <source>Press a key...</source>
        <translation>請按一個鍵...</translation>
    </message>
    <message>
        <source>Values out of range.</source>
        <translation>數值超出範圍。</translation>
    </message>
    <message>
        <source>This key is already mapped in this profile.</source>
        <translation>此按鍵在該方案中已有映射。</translation>
    </message>
</context>
<context>
    <name>KeyMappingTable</name>
    <message>
        <source>Key</source>
        <translation>按鍵</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>類型</translation>
    </message>
    <message>
        <source>Count</source>
        <translation>次數</translation>
    </message>
    <message>
        <source>Duration(ms)</source>
        <translation>時長(毫秒)</translation>
    </message>
    <message>
        <source>Actions</source>
        <translation>操作</translation>
    </message>
    <message>
        <source>Touch</source>
        <translation>點擊</translation>
    </message>
    <message>
        <source>Swipe</source>
        <translation>滑動</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>編輯</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>刪除</translation>
    </message>
</context>
<context>
    <name>Main</name>
    <message>
        <source>Phone Farms</source>
        <translation>手機農場</translation>
    </message>
    <message>
        <source>Korvel Multi-Phones Control</source>
        <translation>Korvel 多手機控制</translation>
    </message>
    <message>
        <source>Devices</source>
        <translation>裝置</translation>
    </message>
    <message>
        <source>Scan Devices</source>
        <translation>掃描裝置</translation>
    </message>
    <message>
        <source>Manage Device Groups</source>
        <translation>管理裝置群組</translation>
    </message>
    <message>
        <source>Restart ADB Server</source>
        <translation>重新啟動 ADB 服務</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>工具</translation>
    </message>
    <message>
        <source>Common Phrases</source>
        <translation>常用語</translation>
    </message>
    <message>
        <source>Key Mapping</source>
        <translation>按鍵映射</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>設定</translation>
    </message>
    <message>
        <source>About APP</source>
        <translation>關於應用</translation>
    </message>
    <message>
        <source>APP Settings</source>
        <translation>應用設定</translation>
    </message>
    <message>
        <source>No Devices In This Group, Click To Scan</source>
        <translation>此群組沒有裝置，點擊掃描</translation>
    </message>
    <message>
        <source>Data Files</source>
        <translation>資料檔案</translation>
    </message>
</context>
<context>
    <name>MediaRecorder</name>
    <message>
        <source>Stop Recording</source>
        <translation>停止錄製</translation>
    </message>
    <message>
        <source>Record Failed</source>
        <translation>錄製失敗</translation>
    </message>
    <message>
        <source>Record Started</source>
        <translation>開始錄製</translation>
    </message>
    <message>
        <source>Record Stopped</source>
        <translation>錄製已停止</translation>
    </message>
</context>
<context>
    <name>MessageStrip</name>
    <message>
        <source>Close</source>
        <translation>關閉</translation>
    </message>
</context>
<context>
    <name>PhoneScreenGrid</name>
    <message>
        <source>Devices</source>
        <translation>裝置</translation>
    </message>
    <message>
        <source>Start All</source>
        <translation>全部啟動</translation>
    </message>
    <message>
        <source>Stop All</source>
        <translation>全部停止</translation>
    </message>
    <message>
        <source>Clear All</source>
        <translation>全部清除</translation>
    </message>
    <message>
        <source>🚩 Group Controlling</source>
        <translation>🚩 群控中</translation>
    </message>
    <message>
        <source>Start Group Control</source>
        <translation>開始群控</translation>
    </message>
    <message>
        <source>Landscape</source>
        <translation>橫向</translation>
    </message>
    <message>
        <source>Portrait</source>
        <translation>直向</translation>
    </message>
    <message>
        <source>More Group Actions</source>
        <translation>更多群組操作</translation>
    </message>
    <message>
        <source>Screenshot</source>
        <translation>截圖</translation>
    </message>
    <message>
        <source>Install APK</source>
        <translation>安裝 APK</translation>
    </message>
    <message>
        <source>Select APK File</source>
        <translation>選擇 APK 檔案</translation>
    </message>
    <message>
        <source>APK files (*.apk)</source>
        <translation>APK 檔案 (*.apk)</translation>
    </message>
    <message>
        <source>Upload File</source>
        <translation>上傳檔案</translation>
    </message>
    <message>
        <source>Select File</source>
        <translation>選擇檔案</translation>
    </message>
    <message>
        <source>All files (*.*)</source>
        <translation>所有檔案 (*.*)</translation>
    </message>
    <message>
        <source>Run AutoJS</source>
        <translation>執行 AutoJS</translation>
    </message>
    <message>
        <source>Select autojs Script</source>
        <translation>選擇 autojs 腳本</translation>
    </message>
    <message>
        <source>autojs files (*.js)</source>
        <translation>autojs 檔案 (*.js)</translation>
    </message>
    <message>
        <source>Stop AutoJS</source>
        <translation>停止 AutoJS</translation>
    </message>
    <message>
        <source>ADB Commands</source>
        <translation>ADB 指令</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>設定</translation>
    </message>
</context>
<context>
    <name>PhraseSelectionDialog</name>
    <message>
        <source>Select Phrase</source>
        <translation>選擇常用語</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>關閉</translation>
    </message>
</context>
<context>
    <name>ScrcpyServer</name>
    <message>
        <source>Cannot listen for the phone&apos;s connections: %1</source>
        <translation>無法監聽手機的連線：%1</translation>
    </message>
</context>
<context>
    <name>ScreenCoordinateDisplayer</name>
    <message>
        <source>X: </source>
        <translation>X: </translation>
    </message>
    <message>
        <source>  Y: </source>
        <translation>  Y: </translation>
    </message>
</context>
</TS>
