<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>ADBCommandDialog</name>
    <message>
        <source>ADB Command</source>
        <translation>ADB 命令</translation>
    </message>
    <message>
        <source>Enter ADB command, for example:
shell ls
shell ps</source>
        <translation>输入 ADB 命令，例如：
shell ls
shell ps</translation>
    </message>
    <message>
        <source>Command Output</source>
        <translation>命令输出</translation>
    </message>
    <message>
        <source>Command output will be displayed here...</source>
        <translation>命令输出将显示在这里...</translation>
    </message>
    <message>
        <source>Execute</source>
        <translation>执行</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>清空</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
</context>
<context>
    <name>ADBRestartDialog</name>
    <message>
        <source>Restart ADB Server</source>
        <translation>重启 ADB 服务</translation>
    </message>
    <message>
        <source>ADB server restarted successfully</source>
        <translation>ADB 服务已成功重启</translation>
    </message>
    <message>
        <source>Failed to restart ADB server</source>
        <translation>重启 ADB 服务失败</translation>
    </message>
    <message>
        <source>Restarting ADB will disconnect all connected devices.</source>
        <translation>重启 ADB 将断开所有已连接的设备。</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Restart</source>
        <translation>重启</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
</context>
<context>
    <name>AboutDialog</name>
    <message>
        <source>About APP</source>
        <translation>关于应用</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>版本</translation>
    </message>
    <message>
        <source>Visit our website for more information and instructions.</source>
        <translation>访问我们的网站以获取更多信息和使用说明。</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
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
            <numerusform>%n 秒无响应</numerusform>
        </translation>
    </message>
    <message>
        <source>Failed to start adb: %1</source>
        <translation>无法启动 adb：%1</translation>
    </message>
</context>
<context>
    <name>AdbResult</name>
    <message>
        <source>adb ended abnormally</source>
        <translation>adb 异常退出</translation>
    </message>
    <message>
        <source>The package manager gave no answer</source>
        <translation>包管理器没有应答</translation>
    </message>
    <message>
        <source>adb exited with code %1</source>
        <translation>adb 退出，代码 %1</translation>
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
        <translation>应用设置</translation>
    </message>
    <message>
        <source>Video save path</source>
        <translation>视频保存路径</translation>
    </message>
    <message>
        <source>Select video save path</source>
        <translation>选择视频保存路径</translation>
    </message>
    <message>
        <source>Screenshot save path</source>
        <translation>截图保存路径</translation>
    </message>
    <message>
        <source>Select screenshot save path</source>
        <translation>选择截图保存路径</translation>
    </message>
    <message>
        <source>KeyMapping save path</source>
        <translation>按键映射保存路径</translation>
    </message>
    <message>
        <source>Select KeyMapping save path</source>
        <translation>选择按键映射保存路径</translation>
    </message>
    <message>
        <source>Common Phrase save path</source>
        <translation>常用语保存路径</translation>
    </message>
    <message>
        <source>Select Common Phrase save path</source>
        <translation>选择常用语保存路径</translation>
    </message>
    <message>
        <source>Device Nickname save path</source>
        <translation>设备昵称保存路径</translation>
    </message>
    <message>
        <source>Select Device Nickname save path</source>
        <translation>选择设备昵称保存路径</translation>
    </message>
    <message>
        <source>Device Group save path</source>
        <translation>设备分组保存路径</translation>
    </message>
    <message>
        <source>Select Device Group save path</source>
        <translation>选择设备分组保存路径</translation>
    </message>
    <message>
        <source>Success</source>
        <translation>成功</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>语言</translation>
    </message>
    <message>
        <source>Browse...</source>
        <translation>浏览...</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
    <message>
        <source>adb processes at once</source>
        <translation>同时运行的 adb 进程数</translation>
    </message>
    <message>
        <source>Saved. The changes apply at once.</source>
        <translation>已保存，更改立即生效。</translation>
    </message>
    <message>
        <source>Please restart the application to apply the changes.</source>
        <translation>请重新启动应用以使更改生效。</translation>
    </message>
</context>
<context>
    <name>AudioDecoder</name>
    <message>
        <source>Sound cannot be played: %1</source>
        <translation>无法播放声音：%1</translation>
    </message>
    <message>
        <source>no Opus decoder in this FFmpeg</source>
        <translation>此 FFmpeg 中没有 Opus 解码器</translation>
    </message>
    <message>
        <source>out of memory for the Opus decoder</source>
        <translation>Opus 解码器内存不足</translation>
    </message>
    <message>
        <source>the Opus decoder did not open: %1 (error code: %2)</source>
        <translation>Opus 解码器无法打开：%1（错误代码：%2）</translation>
    </message>
</context>
<context>
    <name>AudioDemuxer</name>
    <message>
        <source>Audio is not available on this phone (Android 11 or later)</source>
        <translation>此手机无法提供音频（需要 Android 11 或更高版本）</translation>
    </message>
    <message>
        <source>Audio capture failed on this phone</source>
        <translation>此手机音频采集失败</translation>
    </message>
</context>
<context>
    <name>Autojs</name>
    <message>
        <source>Failed to connect to AutoJS server</source>
        <translation>无法连接 AutoJS 服务</translation>
    </message>
    <message>
        <source>Failed to open AutoJS script file</source>
        <translation>无法打开 AutoJS 脚本文件</translation>
    </message>
    <message>
        <source>AutoJS script started</source>
        <translation>AutoJS 脚本已启动</translation>
    </message>
</context>
<context>
    <name>BigDeviceView</name>
    <message>
        <source>Big Screen</source>
        <translation>大屏</translation>
    </message>
    <message>
        <source>Click To Start</source>
        <translation>点击启动</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>启动</translation>
    </message>
</context>
<context>
    <name>CommonPhrasesDialog</name>
    <message>
        <source>Common Phrases Manager</source>
        <translation>常用语管理</translation>
    </message>
    <message>
        <source>Category:</source>
        <translation>分类：</translation>
    </message>
    <message>
        <source>Enter category name...</source>
        <translation>输入分类名称...</translation>
    </message>
    <message>
        <source>New Category</source>
        <translation>新建分类</translation>
    </message>
    <message>
        <source>Update</source>
        <translation>更新</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>添加</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>编辑</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Are you sure you want to delete category?</source>
        <translation>确定要删除该分类吗？</translation>
    </message>
    <message>
        <source>Phrases:</source>
        <translation>常用语：</translation>
    </message>
    <message>
        <source>Enter phrase text...</source>
        <translation>输入常用语内容...</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>说明</translation>
    </message>
    <message>
        <source>New</source>
        <translation>新建</translation>
    </message>
    <message>
        <source>Are you sure you want to delete the phrase?</source>
        <translation>确定要删除该常用语吗？</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
</context>
<context>
    <name>ControlButtons</name>
    <message>
        <source>Home</source>
        <translation>主页</translation>
    </message>
    <message>
        <source>Task List</source>
        <translation>任务列表</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>返回</translation>
    </message>
    <message>
        <source>Swipe Up</source>
        <translation>向上滑动</translation>
    </message>
    <message>
        <source>Swipe Down</source>
        <translation>向下滑动</translation>
    </message>
    <message>
        <source>Swipe Left</source>
        <translation>向左滑动</translation>
    </message>
    <message>
        <source>Swipe Right</source>
        <translation>向右滑动</translation>
    </message>
    <message>
        <source>Rotate Screen</source>
        <translation>旋转屏幕</translation>
    </message>
    <message>
        <source>Screenshot</source>
        <translation>截图</translation>
    </message>
    <message>
        <source>Stop Recording</source>
        <translation>停止录制</translation>
    </message>
    <message>
        <source>Record Video</source>
        <translation>录制视频</translation>
    </message>
    <message>
        <source>Select Phrase</source>
        <translation>选择常用语</translation>
    </message>
    <message>
        <source>Volume Up</source>
        <translation>音量加</translation>
    </message>
    <message>
        <source>Volume Down</source>
        <translation>音量减</translation>
    </message>
    <message>
        <source>Upload File</source>
        <translation>上传文件</translation>
    </message>
    <message>
        <source>Select File</source>
        <translation>选择文件</translation>
    </message>
    <message>
        <source>All files (*.*)</source>
        <translation>所有文件 (*.*)</translation>
    </message>
    <message>
        <source>KeyMapping: %1</source>
        <translation>按键映射：%1</translation>
    </message>
    <message>
        <source>Key Mapping</source>
        <translation>按键映射</translation>
    </message>
    <message>
        <source>Screen Position</source>
        <translation>屏幕坐标</translation>
    </message>
    <message>
        <source>Install APK</source>
        <translation>安装 APK</translation>
    </message>
    <message>
        <source>APK</source>
        <translation>APK</translation>
    </message>
    <message>
        <source>Select APK File</source>
        <translation>选择 APK 文件</translation>
    </message>
    <message>
        <source>APK files (*.apk)</source>
        <translation>APK 文件 (*.apk)</translation>
    </message>
    <message>
        <source>Stop AutoJS</source>
        <translation>停止 AutoJS</translation>
    </message>
    <message>
        <source>Run AutoJS</source>
        <translation>运行 AutoJS</translation>
    </message>
    <message>
        <source>Select AutoJS Script</source>
        <translation>选择 AutoJS 脚本</translation>
    </message>
    <message>
        <source>autojs files (*.js)</source>
        <translation>autojs 文件 (*.js)</translation>
    </message>
    <message>
        <source>Run ADB Command</source>
        <translation>运行 ADB 命令</translation>
    </message>
    <message>
        <source>ADB</source>
        <translation>ADB</translation>
    </message>
    <message>
        <source>Screen On</source>
        <translation>点亮屏幕</translation>
    </message>
    <message>
        <source>Screen Off</source>
        <translation>关闭屏幕</translation>
    </message>
    <message>
        <source>Audio Enabled</source>
        <translation>音频已开启</translation>
    </message>
    <message>
        <source>Audio Disabled</source>
        <translation>音频已关闭</translation>
    </message>
    <message>
        <source>Reboot</source>
        <translation>重启</translation>
    </message>
    <message>
        <source>Shutdown</source>
        <translation>关机</translation>
    </message>
</context>
<context>
    <name>Device</name>
    <message>
        <source>scrcpy-server %1 is missing at %2</source>
        <translation>scrcpy-server %1 不存在于 %2</translation>
    </message>
    <message>
        <source>Audio Enabled, Need Reconnect</source>
        <translation>音频已启用，需要重新连接</translation>
    </message>
    <message>
        <source>Audio Disabled, Need Reconnect</source>
        <translation>音频已禁用，需要重新连接</translation>
    </message>
    <message>
        <source>Not Connected</source>
        <translation>未连接</translation>
    </message>
    <message>
        <source>Screenshot Saved</source>
        <translation>截图已保存</translation>
    </message>
    <message>
        <source>Screenshot Failed</source>
        <translation>截图失败</translation>
    </message>
    <message>
        <source>KeyMapping Profile: %1</source>
        <translation>按键映射方案：%1</translation>
    </message>
    <message>
        <source>KeyMapping Disabled</source>
        <translation>按键映射已禁用</translation>
    </message>
    <message>
        <source>Failed to start: %1</source>
        <translation>启动失败：%1</translation>
    </message>
    <message>
        <source>The phone&apos;s server stopped: %1</source>
        <translation>手机端服务已停止：%1</translation>
    </message>
    <message>
        <source>Back online, starting again</source>
        <translation>已重新上线，正在重新启动</translation>
    </message>
</context>
<context>
    <name>DeviceActions</name>
    <message>
        <source>Not Connected</source>
        <translation>未连接</translation>
    </message>
    <message>
        <source>Failed to tcpip</source>
        <translation>切换 tcpip 失败</translation>
    </message>
    <message>
        <source>WiFi connection enabled</source>
        <translation>WiFi 连接已启用</translation>
    </message>
    <message>
        <source>Failed to enable <byte value="xd"/> WiFi connection</source>
        <translation>无法启用 <byte value="xd"/> WiFi 连接</translation>
    </message>
    <message>
        <source>Failed to disconnect WiFi</source>
        <translation>断开 WiFi 失败</translation>
    </message>
    <message>
        <source>USB connection enabled</source>
        <translation>已切换到 USB 连接</translation>
    </message>
    <message>
        <source>Failed to switch to USB</source>
        <translation>切换到 USB 失败</translation>
    </message>
    <message>
        <source>Installing APK</source>
        <translation>正在安装 APK</translation>
    </message>
    <message>
        <source>APK installed</source>
        <translation>APK 已安装</translation>
    </message>
    <message>
        <source>APK installation failed</source>
        <translation>APK 安装失败</translation>
    </message>
    <message>
        <source>Uploading File</source>
        <translation>正在上传文件</translation>
    </message>
    <message>
        <source>File uploaded</source>
        <translation>文件已上传</translation>
    </message>
    <message>
        <source>File upload failed</source>
        <translation>文件上传失败</translation>
    </message>
</context>
<context>
    <name>DeviceGroupManager</name>
    <message>
        <source>Default Group</source>
        <translation>默认分组</translation>
    </message>
</context>
<context>
    <name>DeviceGroupManagerDialog</name>
    <message>
        <source>Device Group Manager</source>
        <translation>设备分组管理</translation>
    </message>
    <message>
        <source>Group name cannot be empty</source>
        <translation>分组名称不能为空</translation>
    </message>
    <message>
        <source>Group name already exists</source>
        <translation>分组名称已存在</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>Devices</source>
        <translation>设备</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>编辑</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>No device groups</source>
        <translation>没有设备分组</translation>
    </message>
    <message>
        <source>Group Name</source>
        <translation>分组名称</translation>
    </message>
    <message>
        <source>Enter group name...</source>
        <translation>输入分组名称...</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
    <message>
        <source>Create</source>
        <translation>创建</translation>
    </message>
    <message>
        <source>New Group</source>
        <translation>新建分组</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Are you sure you want to delete group &quot;%1&quot;?</source>
        <translation>确定要删除分组“%1”吗？</translation>
    </message>
    <message>
        <source>Its phone is removed with it.</source>
        <translation>该分组的手机将一并移除。</translation>
    </message>
    <message>
        <source>Its %1 phones are removed with it.</source>
        <translation>该分组的 %1 部手机将一并移除。</translation>
    </message>
</context>
<context>
    <name>DeviceInfoDialog</name>
    <message>
        <source>Device Information</source>
        <translation>设备信息</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>未知</translation>
    </message>
    <message>
        <source>No Custom Name</source>
        <translation>无自定义名称</translation>
    </message>
    <message>
        <source>Basic Information</source>
        <translation>基本信息</translation>
    </message>
    <message>
        <source>Device Model:</source>
        <translation>设备型号：</translation>
    </message>
    <message>
        <source>Manufacturer:</source>
        <translation>制造商：</translation>
    </message>
    <message>
        <source>Android Version:</source>
        <translation>Android 版本：</translation>
    </message>
    <message>
        <source>Serial Number:</source>
        <translation>序列号：</translation>
    </message>
    <message>
        <source>Hardware Information</source>
        <translation>硬件信息</translation>
    </message>
    <message>
        <source>Screen Size:</source>
        <translation>屏幕尺寸：</translation>
    </message>
    <message>
        <source>Memory Size:</source>
        <translation>内存大小：</translation>
    </message>
    <message>
        <source>Network Information</source>
        <translation>网络信息</translation>
    </message>
    <message>
        <source>Operator:</source>
        <translation>运营商：</translation>
    </message>
    <message>
        <source>Country / Region Code:</source>
        <translation>国家/地区代码：</translation>
    </message>
    <message>
        <source>Connection Information</source>
        <translation>连接信息</translation>
    </message>
    <message>
        <source>ADB TCP Port:</source>
        <translation>ADB TCP 端口：</translation>
    </message>
    <message>
        <source>USB Configuration:</source>
        <translation>USB 配置：</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
</context>
<context>
    <name>DeviceList</name>
    <message>
        <source>Device Groups</source>
        <translation>设备分组</translation>
    </message>
    <message>
        <source>No device groups</source>
        <translation>没有设备分组</translation>
    </message>
    <message>
        <source>name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>serial</source>
        <translation>序列号</translation>
    </message>
    <message>
        <source>connection type</source>
        <translation>连接类型</translation>
    </message>
    <message>
        <source>Collapse</source>
        <translation>收起</translation>
    </message>
    <message>
        <source>Expand</source>
        <translation>展开</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>启动</translation>
    </message>
    <message>
        <source>Remove Device</source>
        <translation>移除设备</translation>
    </message>
</context>
<context>
    <name>DeviceMenu</name>
    <message>
        <source>Naming Device</source>
        <translation>设备命名</translation>
    </message>
    <message>
        <source>Enable WiFi Connection</source>
        <translation>启用 WiFi 连接</translation>
    </message>
    <message>
        <source>Disconnect WiFi</source>
        <translation>断开 WiFi</translation>
    </message>
    <message>
        <source>Device Information</source>
        <translation>设备信息</translation>
    </message>
    <message>
        <source>Move to Group</source>
        <translation>移动到分组</translation>
    </message>
</context>
<context>
    <name>DeviceRenameDialog</name>
    <message>
        <source>Rename Device</source>
        <translation>重命名设备</translation>
    </message>
    <message>
        <source>Serial Number:</source>
        <translation>序列号：</translation>
    </message>
    <message>
        <source>Current Name:</source>
        <translation>当前名称：</translation>
    </message>
    <message>
        <source>No Custom Name</source>
        <translation>无自定义名称</translation>
    </message>
    <message>
        <source>New Name:</source>
        <translation>新名称：</translation>
    </message>
    <message>
        <source>Enter new device name</source>
        <translation>输入新的设备名称</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Confirm</source>
        <translation>确认</translation>
    </message>
</context>
<context>
    <name>DeviceScanDialog</name>
    <message>
        <source>Scan Devices</source>
        <translation>扫描设备</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>Target Group:</source>
        <translation>目标分组：</translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation>刷新</translation>
    </message>
    <message>
        <source>Select</source>
        <translation>选择</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>类型</translation>
    </message>
    <message>
        <source>Nickname</source>
        <translation>昵称</translation>
    </message>
    <message>
        <source>Serial Number</source>
        <translation>序列号</translation>
    </message>
    <message>
        <source>Product</source>
        <translation>产品</translation>
    </message>
    <message>
        <source>No devices found</source>
        <translation>未发现设备</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>全选</translation>
    </message>
    <message>
        <source>Add to Group</source>
        <translation>添加到分组</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
</context>
<context>
    <name>DeviceView</name>
    <message>
        <source>Big Screen</source>
        <translation>大屏</translation>
    </message>
    <message>
        <source>Click To Start</source>
        <translation>点击启动</translation>
    </message>
    <message>
        <source>On Big Screen</source>
        <translation>正在大屏显示</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>启动</translation>
    </message>
    <message>
        <source>Remove Device</source>
        <translation>移除设备</translation>
    </message>
    <message>
        <source>Starting…</source>
        <translation>正在启动…</translation>
    </message>
    <message>
        <source>Offline</source>
        <translation>离线</translation>
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
        <translation>选择文件</translation>
    </message>
    <message>
        <source>All files (*.*)</source>
        <translation>所有文件 (*.*)</translation>
    </message>
</context>
<context>
    <name>GroupActions</name>
    <message>
        <source>&quot;%1&quot; did not start: &quot;%2&quot; is still running. Cancel it or wait for it to end.</source>
        <translation>“%1”未启动：“%2”仍在运行。请取消它或等待其结束。</translation>
    </message>
    <message>
        <source>Screenshot</source>
        <translation>截图</translation>
    </message>
    <message>
        <source>Install APK</source>
        <translation>安装 APK</translation>
    </message>
    <message>
        <source>Upload File</source>
        <translation>上传文件</translation>
    </message>
    <message>
        <source>Run AutoJS</source>
        <translation>运行 AutoJS</translation>
    </message>
    <message>
        <source>ADB Command</source>
        <translation>ADB 命令</translation>
    </message>
</context>
<context>
    <name>GroupOperation</name>
    <message>
        <source>queued</source>
        <translation>排队中</translation>
    </message>
    <message>
        <source>running</source>
        <translation>运行中</translation>
    </message>
    <message>
        <source>done</source>
        <translation>完成</translation>
    </message>
    <message>
        <source>failed</source>
        <translation>失败</translation>
    </message>
    <message>
        <source>cancelled</source>
        <translation>已取消</translation>
    </message>
    <message>
        <source>timed out</source>
        <translation>超时</translation>
    </message>
    <message>
        <source>ADB Command</source>
        <translation>ADB 命令</translation>
    </message>
    <message>
        <source>The phone has left the group</source>
        <translation>手机已离开分组</translation>
    </message>
    <message>
        <source>The phone did not answer</source>
        <translation>手机没有应答</translation>
    </message>
    <message numerus="yes">
        <source>%n done</source>
        <translation>
            <numerusform>%n 个完成</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n failed</source>
        <translation>
            <numerusform>%n 个失败</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n timed out</source>
        <translation>
            <numerusform>%n 个超时</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n cancelled</source>
        <translation>
            <numerusform>%n 个已取消</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n running</source>
        <translation>
            <numerusform>%n 个运行中</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n queued</source>
        <translation>
            <numerusform>%n 个排队中</numerusform>
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
        <translation>关闭</translation>
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
        <translation>重试失败项</translation>
    </message>
    <message>
        <source>Copy report</source>
        <translation>复制报告</translation>
    </message>
</context>
<context>
    <name>GroupSettingsDialog</name>
    <message>
        <source>Group Settings</source>
        <translation>分组设置</translation>
    </message>
    <message>
        <source>General Settings</source>
        <translation>常规设置</translation>
    </message>
    <message>
        <source>Group Control Delay:</source>
        <translation>群控延迟：</translation>
    </message>
    <message>
        <source> s</source>
        <translation> 秒</translation>
    </message>
    <message>
        <source>Show Control Buttons:</source>
        <translation>显示控制按钮：</translation>
    </message>
    <message>
        <source>Enable Sound Output:</source>
        <translation>启用声音输出：</translation>
    </message>
    <message>
        <source>Android 11 or later</source>
        <translation>Android 11 或更高版本</translation>
    </message>
    <message>
        <source>Need Reconnect</source>
        <translation>需要重新连接</translation>
    </message>
    <message>
        <source>Small Window Settings</source>
        <translation>小窗口设置</translation>
    </message>
    <message>
        <source>Width:</source>
        <translation>宽度：</translation>
    </message>
    <message>
        <source> px</source>
        <translation> 像素</translation>
    </message>
    <message>
        <source>Resolution:</source>
        <translation>分辨率：</translation>
    </message>
    <message>
        <source>Frame Rate:</source>
        <translation>帧率：</translation>
    </message>
    <message>
        <source> fps</source>
        <translation> 帧/秒</translation>
    </message>
    <message>
        <source>Bit Rate:</source>
        <translation>码率：</translation>
    </message>
    <message>
        <source> Mbps</source>
        <translation> Mbps</translation>
    </message>
    <message>
        <source>Big Window Settings</source>
        <translation>大窗口设置</translation>
    </message>
    <message>
        <source>Big View Width:</source>
        <translation>大屏宽度：</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
</context>
<context>
    <name>JsonFile</name>
    <message>
        <source>%1 could not be read and could not be moved aside. Korvel will not save over it; changes are kept only until Korvel closes.</source>
        <translation>无法读取 %1，也无法将其移到一旁。Korvel 不会覆盖它；更改只保留到 Korvel 关闭。</translation>
    </message>
    <message>
        <source>%1 could not be read. It was kept as %2 and Korvel started without it.</source>
        <translation>无法读取 %1。它已保留为 %2，Korvel 在没有它的情况下启动。</translation>
    </message>
    <message>
        <source>%1 could not be saved. Changes are kept only until Korvel closes.</source>
        <translation>无法保存 %1。更改只保留到 Korvel 关闭。</translation>
    </message>
    <message>
        <source>Parts of %1 could not be read and were left out. The file as it was is kept as %2.</source>
        <translation>%1 的部分内容无法读取，已被略去。原来的文件已保留为 %2。</translation>
    </message>
    <message>
        <source>Parts of %1 could not be read and a copy could not be kept. Korvel will not save over it; changes are kept only until Korvel closes.</source>
        <translation>%1 的部分内容无法读取，也无法保留副本。Korvel 不会覆盖它；更改只保留到 Korvel 关闭。</translation>
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
        <translation>删除</translation>
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
        <translation>选择按键映射方案</translation>
    </message>
    <message>
        <source>No KeyMap</source>
        <translation>不使用按键映射</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
</context>
<context>
    <name>KeyMappingDialog</name>
    <message>
        <source>Key Mapping Settings</source>
        <translation>按键映射设置</translation>
    </message>
    <message>
        <source>Press a key...</source>
        <translation>请按一个键...</translation>
    </message>
    <message>
        <source>Mapping Profile:</source>
        <translation>映射方案：</translation>
    </message>
    <message>
        <source>New</source>
        <translation>新建</translation>
    </message>
    <message>
        <source>Delete Profile</source>
        <translation>删除方案</translation>
    </message>
    <message>
        <source>Are you sure you want to delete profile</source>
        <translation>确定要删除方案</translation>
    </message>
    <message>
        <source>Create New Profile</source>
        <translation>新建方案</translation>
    </message>
    <message>
        <source>Profile Name:</source>
        <translation>方案名称：</translation>
    </message>
    <message>
        <source>Enter profile name...</source>
        <translation>输入方案名称...</translation>
    </message>
    <message>
        <source>Create</source>
        <translation>创建</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Touch</source>
        <translation>点击</translation>
    </message>
    <message>
        <source>Swipe</source>
        <translation>滑动</translation>
    </message>
    <message>
        <source>Add New Mapping</source>
        <translation>添加新映射</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Add New Key Mapping</source>
        <translation>添加按键映射</translation>
    </message>
    <message>
        <source>Edit Key Mapping</source>
        <translation>编辑按键映射</translation>
    </message>
    <message>
        <source>Edit Swipe Mapping</source>
        <translation>编辑滑动映射</translation>
    </message>
    <message>
        <source>Key:</source>
        <translation>按键：</translation>
    </message>
    <message>
        <source>Type:</source>
        <translation>类型：</translation>
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
        <translation>次数：</translation>
    </message>
    <message>
        <source>(1-10)</source>
        <translation>(1-10)</translation>
    </message>
    <message>
        <source>Start X:</source>
        <translation>起点 X：</translation>
    </message>
    <message>
        <source>Start Y:</source>
        <translation>起点 Y：</translation>
    </message>
    <message>
        <source>End X:</source>
        <translation>终点 X：</translation>
    </message>
    <message>
        <source>End Y:</source>
        <translation>终点 Y：</translation>
    </message>
    <message>
        <source>Duration(ms):</source>
        <translation>时长(毫秒)：</translation>
    </message>
    <message>
        <source>Duration:</source>
        <translation>时长：</translation>
    </message>
    <message>
        <source>(50-2000ms)</source>
        <translation>(50-2000毫秒)</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>起点</translation>
    </message>
    <message>
        <source>End</source>
        <translation>终点</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
    <message>
        <source>Phone:</source>
        <translation>手机：</translation>
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
        <translation>启动当前分组中的一台手机即可在此看到其屏幕。</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>启动</translation>
    </message>
    <message>
        <source>End</source>
        <translation>终点</translation>
    </message>
</context>
<context>
    <name>KeyMappingProfile</name>
    <message>
        <source>Press a key...</source>
        <translation>请按一个键...</translation>
    </message>
    <message>
        <source>Values out of range.</source>
        <translation>数值超出范围。</translation>
    </message>
    <message>
        <source>This key is already mapped in this profile.</source>
        <translation>此按键在该方案中已有映射。</translation>
    </message>
</context>
<context>
    <name>KeyMappingTable</name>
    <message>
        <source>Key</source>
        <translation>按键</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>类型</translation>
    </message>
    <message>
        <source>Count</source>
        <translation>次数</translation>
    </message>
    <message>
        <source>Duration(ms)</source>
        <translation>时长(毫秒)</translation>
    </message>
    <message>
        <source>Actions</source>
        <translation>操作</translation>
    </message>
    <message>
        <source>Touch</source>
        <translation>点击</translation>
    </message>
    <message>
        <source>Swipe</source>
        <translation>滑动</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>编辑</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
</context>
<context>
    <name>Main</name>
    <message>
        <source>Phone Farms</source>
        <translation>手机农场</translation>
    </message>
    <message>
        <source>Korvel Multi-Phones Control</source>
        <translation>Korvel 多手机控制</translation>
    </message>
    <message>
        <source>Devices</source>
        <translation>设备</translation>
    </message>
    <message>
        <source>Scan Devices</source>
        <translation>扫描设备</translation>
    </message>
    <message>
        <source>Manage Device Groups</source>
        <translation>管理设备分组</translation>
    </message>
    <message>
        <source>Restart ADB Server</source>
        <translation>重启 ADB 服务</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>工具</translation>
    </message>
    <message>
        <source>Common Phrases</source>
        <translation>常用语</translation>
    </message>
    <message>
        <source>Key Mapping</source>
        <translation>按键映射</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>设置</translation>
    </message>
    <message>
        <source>About APP</source>
        <translation>关于应用</translation>
    </message>
    <message>
        <source>APP Settings</source>
        <translation>应用设置</translation>
    </message>
    <message>
        <source>No Devices In This Group, Click To Scan</source>
        <translation>此分组没有设备，点击扫描</translation>
    </message>
    <message>
        <source>Data Files</source>
        <translation>数据文件</translation>
    </message>
</context>
<context>
    <name>MediaRecorder</name>
    <message>
        <source>Stop Recording</source>
        <translation>停止录制</translation>
    </message>
    <message>
        <source>Record Failed</source>
        <translation>录制失败</translation>
    </message>
    <message>
        <source>Record Started</source>
        <translation>开始录制</translation>
    </message>
    <message>
        <source>Record Stopped</source>
        <translation>录制已停止</translation>
    </message>
</context>
<context>
    <name>MessageStrip</name>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
</context>
<context>
    <name>PhoneScreenGrid</name>
    <message>
        <source>Devices</source>
        <translation>设备</translation>
    </message>
    <message>
        <source>Start All</source>
        <translation>全部启动</translation>
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
        <translation>开始群控</translation>
    </message>
    <message>
        <source>Landscape</source>
        <translation>横屏</translation>
    </message>
    <message>
        <source>Portrait</source>
        <translation>竖屏</translation>
    </message>
    <message>
        <source>More Group Actions</source>
        <translation>更多分组操作</translation>
    </message>
    <message>
        <source>Screenshot</source>
        <translation>截图</translation>
    </message>
    <message>
        <source>Install APK</source>
        <translation>安装 APK</translation>
    </message>
    <message>
        <source>Select APK File</source>
        <translation>选择 APK 文件</translation>
    </message>
    <message>
        <source>APK files (*.apk)</source>
        <translation>APK 文件 (*.apk)</translation>
    </message>
    <message>
        <source>Upload File</source>
        <translation>上传文件</translation>
    </message>
    <message>
        <source>Select File</source>
        <translation>选择文件</translation>
    </message>
    <message>
        <source>All files (*.*)</source>
        <translation>所有文件 (*.*)</translation>
    </message>
    <message>
        <source>Run AutoJS</source>
        <translation>运行 AutoJS</translation>
    </message>
    <message>
        <source>Select autojs Script</source>
        <translation>选择 autojs 脚本</translation>
    </message>
    <message>
        <source>autojs files (*.js)</source>
        <translation>autojs 文件 (*.js)</translation>
    </message>
    <message>
        <source>Stop AutoJS</source>
        <translation>停止 AutoJS</translation>
    </message>
    <message>
        <source>ADB Commands</source>
        <translation>ADB 命令</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>设置</translation>
    </message>
</context>
<context>
    <name>PhraseSelectionDialog</name>
    <message>
        <source>Select Phrase</source>
        <translation>选择常用语</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
</context>
<context>
    <name>ScrcpyServer</name>
    <message>
        <source>Cannot listen for the phone&apos;s connections: %1</source>
        <translation>无法监听手机的连接：%1</translation>
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
